#pragma once

// The sounds.

#include "assets/sounds/signal.h"

namespace sounds {

// Loudness in dB, see `Level`, and peaks as a fraction of full scale, see `Limit`. They are low because up to
// three events and all loops sound at once without clipping. The theme is louder than the crowd; the narrow
// tone of a whistle is more audible than its loudness suggests.
constexpr double EventLevel = -16.0, EventPeak = 0.33;
constexpr double WhistleLevel = -19.5, WhistlePeak = 0.25;
constexpr double StingLevel = -16.5, StingPeak = 0.22;
constexpr double ThemeLevel = -18.0, ThemePeak = 0.28;
constexpr double CrowdLevel = -20.5, CrowdPeak = 0.2;

Signal Crowd(double seconds, std::uint32_t seed); ///< a large crowd at rest, a loop
Signal Cheer();                                   ///< swells and fades
Signal LargeCheer();                              ///< with claps and whistles
Signal Boo();                                     ///< many low voices, falling
Signal Theme();                                   ///< stadium rock, a loop
Signal Sting();                                   ///< one power chord in the theme's key
Signal Swoosh();                                  ///< paper over felt
Signal ShortWhistle();
Signal LongWhistle();
Signal FinalWhistle(); ///< three blasts

} // namespace sounds
