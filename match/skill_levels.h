#pragma once

// The levels of the computer opponent, in the order in which the launch window lists them.

#include <algorithm>
#include <array>
#include <string_view>

/// A level scales the computer's random errors and changes nothing else.
struct SkillLevel {
  std::string_view Name; ///< as the player reads it
  float ErrorScale;      ///< factor on the errors of heading and force
  bool operator==(const SkillLevel &) const = default;
};

inline constexpr std::array SkillLevels{
    SkillLevel{"Easy", 2.0f},
    SkillLevel{"Medium", 1.0f},
    SkillLevel{"Hard", 0.5f},
};

/// The level of that name; null if there is none.
constexpr const SkillLevel *FindSkillLevel(std::string_view name) {
  const auto *found = std::ranges::find(SkillLevels, name, &SkillLevel::Name);
  return found == SkillLevels.end() ? nullptr : found;
}

inline constexpr SkillLevel DefaultSkillLevel = *FindSkillLevel("Medium");
