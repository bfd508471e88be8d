// The scale beside the meter.

#include "shot/meter.h"

#include "match/frm_snapwedge.h"
#include "match/shot_power.h"
#include "scene/places.h"
#include "scene/yards.h"

namespace {

/// The outcome of a straight kick of that force.
const char *KickOutcome(float power) {
  const auto height = KickHeightAtPosts(power);
  if (!height) return "short";
  return *height > Places::Goal.y ? "over the bar" : "under the bar";
}

} // namespace

void frmSnapwedge::ScaleForFlick() {
  ProgressBar1.Scale = {{0.0f, "yards"}};
  for (float power = MeterRise; power <= MeterLimit; power += MeterRise)
    ProgressBar1.Scale.push_back({power, InYards(FlickReach(power, ForceDecay))});
  ProgressBar1.Scale.push_back({MeterLimit, "too hard"});
}

void frmSnapwedge::ScaleForKick() {
  ProgressBar1.Scale.clear();
  const std::string clears = "over the bar";
  std::string last;
  for (float power = MeterRise; power <= MeterLimit; power += MeterRise) {
    // Of consecutive steps with the same outcome only the first is labelled.
    const std::string outcome = KickOutcome(power);
    const bool changed = outcome != last;
    ProgressBar1.Scale.push_back({power, changed ? outcome : "", changed && outcome == clears});
    last = outcome;
  }
  ProgressBar1.Scale.push_back({MeterLimit, "too weak"});
}
