#pragma once

// The eleven sounds.

#include "assets/sounds/signal.h"

namespace sounds {

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
