#pragma once

// The computer's plan for one attempt.

#include "match/program.h"

struct ComputerPlan {
  float
      Turn; ///< heading error, radians from straight down the field; at most 0.1125 to either side at Medium
  float Force; ///< 96, 27 or the level's third force by the attempt, with an error of at most 1.225 at Medium
};

/// Draws the plan of the attempt that begins with `shots` attempts left.
ComputerPlan PlanComputerShot(Machine &machine, const SkillLevel &skill, std::int16_t shots);
