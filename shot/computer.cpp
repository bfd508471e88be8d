// The computer opponent: a fixed plan of three forces that add up to the length of the field, with a random
// error in heading and force. It doesn't see the table; match/skill_levels.h defines its skill.

#include "shot/computer.h"

#include "match/arithmetic.h"
#include "match/frm_snapwedge.h"

#include <cmath>

namespace {

constexpr float FirstForce = 96.0f;
constexpr float SecondForce = 27.0f;
constexpr float ThirdForce = 20.0f;

constexpr float TurnSteps = 10.0f;     ///< the heading error has this many values ...
constexpr float TurnDivisor = 80.0f;   ///< ... an 80th of a radian apart
constexpr float SpreadSteps = 50.0f;   ///< the force error has this many values ...
constexpr float SpreadDivisor = 40.0f; ///< ... a 40th apart
constexpr float SignSteps = 10.0f;
constexpr float LastNegative = 5.0f; ///< of the ten values of a sign's draw, 0 to 5 are negative

/// Draws an integer in [0, `steps`), reseeding the generator first.
float Draw(Machine &machine, float steps) {
  machine.Randomize();
  return static_cast<float>(std::floor(static_cast<double>(machine.Rnd()) * static_cast<double>(steps)));
}

float DrawSign(Machine &machine) { return Draw(machine, SignSteps) <= LastNegative ? -1.0f : 1.0f; }

/// Planned force of an attempt, by the number of attempts left before it.
float BaseForce(std::int16_t shots) {
  if (shots == 3) return FirstForce;
  if (shots == 2) return SecondForce;
  return ThirdForce;
}

} // namespace

ComputerPlan PlanComputerShot(Machine &machine, const SkillLevel &skill, std::int16_t shots) {
  float Turn = Quotient(Draw(machine, TurnSteps), TurnDivisor);
  float Spread = Quotient(Draw(machine, SpreadSteps), SpreadDivisor);
  Turn *= DrawSign(machine);
  Spread *= DrawSign(machine);
  Turn *= skill.HeadingErrors;
  Spread *= skill.ForceErrors;
  return {Turn, Sum(Spread, BaseForce(shots))};
}

void frmSnapwedge::CompShot1() {
  const auto &scene = RMCanvas1.SceneFrame;
  SideCam();
  LookCam();
  ComputerPlan plan = PlanComputerShot(machine, program.Skill, Shots);
  AimFrame->SetOrientation(scene, 0, 0, 1, 0, 1, 0);
  AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, plan.Turn);
  Vector direction, up;
  AimFrame->GetOrientation(scene, direction, up);
  ReadShotPlace();
  std::int16_t side = 2;
  Flick(FrameX, FrameY, FrameZ, plan.Force, direction.x, direction.y, direction.z, up.x, up.y, up.z, side);
}
