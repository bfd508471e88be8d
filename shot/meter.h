#pragma once

// The power meter: how it rises, and what a shot of a given force is worth.

#include <optional>

constexpr float MeterRise = 8.0f;    ///< of the meter, a frame
constexpr float MeterLimit = 100.0f; ///< strictly above it the shot fires by itself

/// How far a flick goes on a table without an end, by the flick's own arithmetic, scene units.
/// @param power  its force, 0 to 120
/// @param decay  loss of force in a step, above 0
float FlickReach(float power, float decay);

/// How high above the table a kick straight down the field is when it comes level with the posts, by the
/// kick's own arithmetic, scene units. Nothing for one that comes down before them.
std::optional<float> KickHeightAtPosts(float power);
