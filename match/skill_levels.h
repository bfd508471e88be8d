#pragma once

// The levels of the computer opponent, in the order in which the launch window lists them.

#include <algorithm>
#include <array>
#include <string_view>

/// What makes one level differ from another.
struct SkillLevel {
  std::string_view Name; ///< as the player reads it
  float ErrorScale;      ///< factor on the random errors of heading and force
  float ThirdForce;      ///< of the plan's last shot, without an error
  bool operator==(const SkillLevel &) const = default;
};

// A force of 20 takes a shot without any error just over the edge, where the piece falls: it needs the
// errors, which shorten the way. Half the errors alone would score less than Medium, so Hard also shoots a
// little shorter.
inline constexpr std::array SkillLevels{
    SkillLevel{"Easy", 2.0f, 20.0f},
    SkillLevel{"Medium", 1.0f, 20.0f},
    SkillLevel{"Hard", 0.5f, 18.5f},
};

/// The level of that name; null if there is none.
constexpr const SkillLevel *FindSkillLevel(std::string_view name) {
  const auto *found = std::ranges::find(SkillLevels, name, &SkillLevel::Name);
  return found == SkillLevels.end() ? nullptr : found;
}

inline constexpr SkillLevel DefaultSkillLevel = *FindSkillLevel("Medium");
