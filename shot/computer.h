#pragma once

// The computer opponent's plan for one attempt.

#include "match/program.h"

struct ComputerPlan {
  float Turn;  ///< heading error, radians from straight down the field; up to 0.1125 either way at Medium
  float Force; ///< 96, 27 or 20 depending on the attempt, with an error of up to 1.225 at Medium
};

/// Plans the next attempt. @param shots  attempts left before it
ComputerPlan PlanComputerShot(Machine &machine, const SkillLevel &skill, std::int16_t shots);
