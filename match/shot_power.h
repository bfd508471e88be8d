#pragma once

// The power of a shot, as the meter shows it: how it charges, and what happens past the limit.

constexpr float MeterRise = 8.0f;       ///< of the meter, per frame
constexpr float MeterLimit = 100.0f;    ///< strictly above it the shot fires by itself
constexpr float StrongestAimed = 96.0f; ///< highest value of the meter within the limit

// An overcharged shot has a fixed power, independent of the meter.
constexpr float OverchargedFlick = 120.0f; ///< the strongest shot there is
constexpr float OverchargedKick = 30.0f;   ///< so weak that it falls short
