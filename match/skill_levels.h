#pragma once

// The levels of the computer opponent, in the order in which the launch window lists them.

#include <algorithm>
#include <array>
#include <string_view>

/// What makes one level differ from another.
struct SkillLevel {
  std::string_view Name; ///< as the player reads it
  float HeadingErrors;   ///< factor on the random errors of heading
  float ForceErrors;     ///< factor on the random errors of force
  bool operator==(const SkillLevel &) const = default;
};

// Hard aims far straighter. Its force varies a little more than Medium's, not less: the plan without any
// error ends just over the edge, so that smaller errors of force cost points.
inline constexpr std::array SkillLevels{
    SkillLevel{"Easy", 2.0f, 2.0f},
    SkillLevel{"Medium", 1.0f, 1.0f},
    SkillLevel{"Hard", 0.25f, 1.25f},
};

/// The level of that name; null if there is none.
constexpr const SkillLevel *FindSkillLevel(std::string_view name) {
  const auto *found = std::ranges::find(SkillLevels, name, &SkillLevel::Name);
  return found == SkillLevels.end() ? nullptr : found;
}

inline constexpr SkillLevel DefaultSkillLevel = *FindSkillLevel("Medium");
