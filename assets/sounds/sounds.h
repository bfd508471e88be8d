#pragma once

// The eleven sounds.

#include "assets/sounds/signal.h"

namespace sounds {

// Loudness in dB, see `Level`. As low as it is because up to three events and all loops sound at once, and
// their sum must not clip. The theme stands out from the crowd that it sounds with.
constexpr double EventLevel = -15.5;
constexpr double ThemeLevel = -26.0;
constexpr double CrowdLevel = -28.0;

Signal Crowd(double seconds, std::uint32_t seed); ///< a large crowd at rest, a loop
Signal Cheer();                                   ///< it swells and falls
Signal LargeCheer();                              ///< with claps and whistles
Signal Boo();                                     ///< many low voices, falling
Signal Theme();                                   ///< stadium rock, a loop
Signal Sting();                                   ///< one power chord in the theme's key
Signal Swoosh();                                  ///< paper over felt
Signal ShortWhistle();
Signal LongWhistle();
Signal FinalWhistle(); ///< three blasts

} // namespace sounds
