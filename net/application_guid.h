#pragma once

/// Identifies the game among the programs whose sessions may be on a network.
inline constexpr const char *ApplicationGuid = "{7AB2F242-475F-11D4-AF9B-00C04F361528}";
