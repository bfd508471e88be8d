#pragma once

// The levels of the computer opponent, in the order in which the launch window lists them.

#include <algorithm>
#include <array>
#include <string_view>

/// A level scales the random errors of the computer's plan and changes nothing else.
struct SkillLevel {
  std::string_view Name; ///< as displayed
  float HeadingErrors;   ///< factor of the heading errors
  float ForceErrors;     ///< factor of the force errors
  bool operator==(const SkillLevel &) const = default;
};

// Hard aims much better than Medium, but its force errors are slightly larger. Without any error the plan
// ends just past the edge, so smaller force errors would cost points.
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
