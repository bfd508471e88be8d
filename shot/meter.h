#pragma once

// What a shot of a given power is worth, for the scale beside the meter.

#include <optional>

/// Distance of a flick on an endless table, by the flick's own arithmetic, scene units.
/// @param power  initial force, 0 to 120
/// @param decay  loss of force per step, above 0
float FlickReach(float power, float decay);

/// Height above the table at which a kick straight down the field reaches the posts, by the kick's own
/// arithmetic, scene units. Nothing if the kick comes down before them.
std::optional<float> KickHeightAtPosts(float power);
