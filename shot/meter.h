#pragma once

// What a shot of a given power is worth, for the scale beside the meter.

#include <optional>

/// How far a flick goes on a table without an end, by the flick's own arithmetic, scene units.
/// @param power  its force, 0 to 120
/// @param decay  loss of force in a step, above 0
float FlickReach(float power, float decay);

/// Height above the table at which a kick straight down the field reaches the posts, by the kick's own
/// arithmetic, scene units. Nothing for a kick that comes down before them.
std::optional<float> KickHeightAtPosts(float power);
