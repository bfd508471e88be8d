// All texts of the line under the view: what the player can do now, and after a shot what happened and why.
// The keys that aim and shoot are lit while they work. The line reports the verdict of the rules and decides
// nothing. On the waiting computer of a network game it says only what the other computer has sent.

#include "match/frm_snapwedge.h"
#include "match/results.h"
#include "match/shot_power.h"
#include "scene/places.h"
#include "scene/yards.h"
#include "shot/meter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace {

constexpr const char *WritingHint = "Type your message. Enter sends it and goes back to the game.";
constexpr const char *StalledHint = "Waiting for the other computer. The match goes on once it answers.";
constexpr float NearMiss = 2.0f; ///< from a corner to the circle, scene units

Vector PlaceOf(const Ref<Direct3DRMFrame3> &frame, const frmSnapwedge &window) {
  Vector place;
  frame->GetPosition(window.RMCanvas1.SceneFrame, place);
  return place;
}

/// From a point to the far edge, scene units, at least 0.
float ToFarEdge(const Vector &place) { return std::max(place.z - Places::FarEdgeZ, 0.0f); }

std::string ToTheEdge(const frmSnapwedge &window) {
  return InYards(ToFarEdge(PlaceOf(window.PieceFrame, window)));
}

std::array<Vector, 3> CornersOf(const frmSnapwedge &window) {
  return {PlaceOf(window.CornerA, window), PlaceOf(window.CornerB, window), PlaceOf(window.CornerC, window)};
}

/// The travel after which a corner may hang over the far edge while the middle is on the table, rounded
/// inward.
std::string ToHang(const frmSnapwedge &window) {
  const Vector middle = PlaceOf(window.PieceFrame, window);
  float reach = 0; // of a corner from the middle
  for (const Vector &corner : CornersOf(window))
    reach = std::max(reach, std::hypot(corner.x - middle.x, corner.z - middle.z));
  const auto halfDigit = [](float travel) {
    return (travel < 10 * UnitsPerYard ? 0.05f : 0.5f) * UnitsPerYard;
  };
  const float most = ToFarEdge(middle), least = most - reach;
  return (least > 0 ? InYards(least + halfDigit(least)) + " to " : "up to ") +
         InYards(std::max(most - halfDigit(most), 0.0f)) + " yards";
}

bool JustMissedTheCircle(const frmSnapwedge &window) {
  return window.Shots == AttemptsInPossession - 1 && !window.OnCircle &&
         std::ranges::any_of(CornersOf(window), [](const Vector &corner) {
           return std::hypot(corner.x, corner.z - Places::CircleZ) < Places::CircleRadius + NearMiss;
         });
}

/// Name of the running attempt, from the attempts left after it.
std::string TryName(std::int16_t shots) {
  return shots >= 2 ? "first try" : shots == 1 ? "second try" : "third try";
}

enum class Shooter { Here, Computer, Other };

Shooter WhoShoots(const Program &program) {
  if (program.MyTurn || program.GameMode == "Human") return Shooter::Here;
  return program.GameMode == "Computer" ? Shooter::Computer : Shooter::Other;
}

std::string WhoseTurn(const Program &program) {
  if (program.GameMode != "Human") return "Your turn";
  return program.MyTurn ? "Home Team's turn" : "Away Team's turn";
}

/// The hint before the second or third try of the player at this mouse.
std::string NextTry(const frmSnapwedge &window) {
  const bool last = window.Shots < 2;
  const std::string yards = ToTheEdge(window) + " yards to the far edge";
  const std::string hang = "Last try: " + ToHang(window) + " can hang a corner over the edge.";
  if (window.ShotPower == 0.0f)
    return std::string("No power: let go before the meter rose. ") +
           (last ? "One try is left." : "Two tries are left.");
  if (window.OverSide)
    return "A corner over the side counts for nothing. " + (last ? "Last try, " + yards : yards) + ".";
  if (JustMissedTheCircle(window))
    return "No corner is on the circle. " + yards + ": don't cross it before the third try.";
  if (!last) return yards + ". Don't cross it yet: only the third try counts.";
  if (window.OnCircle) return "The circle pays on try one only. " + hang;
  return hang;
}

bool Overcharged(const frmSnapwedge &window) {
  return window.ProgressBar1.CapLit || window.ShotPower > MeterLimit;
}

std::string FallReason(const frmSnapwedge &window) {
  if (Overcharged(window)) return "Held past the top of the meter: the shot fires by itself, far too hard.";
  const Vector place = PlaceOf(window.PieceFrame, window);
  if (place.z < Places::FarEdgeZ) return "Too hard: it slid off the far edge.";
  if (place.z > Places::TableHalf) return "It slid off the near edge.";
  return "Aimed too far aside: it slid off the side.";
}

std::string ShortReason(const frmSnapwedge &window) {
  if (window.ShotPower == 0.0f) return "No power: let go before the meter rose. That was the third try.";
  if (window.OverSide) return "A corner over the side counts for nothing. That was the third try.";
  const auto corners = CornersOf(window);
  const Vector nearest = std::ranges::min(corners, {}, &Vector::z);
  return "No corner hangs over the far edge: " + InYards(ToFarEdge(nearest)) +
         " yards short on the third try.";
}

std::string MissReason(const frmSnapwedge &window) {
  // The force of an overcharged kick is low, so only the cap shows it.
  if (window.ProgressBar1.CapLit) return "Held past the top of the meter: the kick comes off far too weak.";
  const Vector piece = PlaceOf(window.PieceFrame, window), goal = PlaceOf(window.GoalFrame, window);
  if (piece.z > Places::Goal.z) return "Too weak: the kick came down before the posts.";
  if (piece.y <= goal.y) return "Too weak: the kick passed under the bar.";
  return piece.x > goal.x ? "Wide to the left of the posts." : "Wide to the right of the posts.";
}

} // namespace

void frmSnapwedge::HintAim() {
  MouseKeys.Visible = WhoShoots(program) == Shooter::Here;
  if (LastWait && program.MyTurn) {
    HintOver();
    return;
  }
  switch (WhoShoots(program)) {
  case Shooter::Computer:
    SetHint(KickMode ? "The computer waits for the posts." : "The computer's turn.");
    return;
  case Shooter::Other:
    SetHint(KickMode ? "The other player kicks for 1 point."
                     : "The other player's turn. Press ~ to write a message, Enter to send it.");
    return;
  case Shooter::Here:
    break;
  }
  if (KickMode) {
    SetHint("Kick for 1 point: over the bar, aimed ahead of the moving posts.");
  } else if (Shots < AttemptsInPossession) {
    SetHint(NextTry(*this));
  } else {
    SetHint(WhoseTurn(program) + ": " + ToTheEdge(*this) +
            " yards to the far edge. Hold the left button, let go to shoot.");
  }
}

void frmSnapwedge::HintFlight() {
  MouseKeys.Visible = false;
  const bool overcharged = Overcharged(*this);
  switch (WhoShoots(program)) {
  case Shooter::Computer:
    SetHint(KickMode ? "The computer kicks." : "The computer's " + TryName(Shots) + ".");
    return;
  case Shooter::Other:
    SetHint(KickMode      ? "The other player kicks. Whether it is good is judged over there."
            : overcharged ? "The other player held past the top of the meter: far too hard."
                          : "The other player's " + TryName(Shots) + ".");
    return;
  case Shooter::Here:
    break;
  }
  if (overcharged) {
    SetHint(std::string("Held past the top of the meter: the shot fires by itself, far too ") +
            (KickMode ? "weak." : "hard."));
  } else if (KickMode) {
    SetHint("The posts go on moving while it flies.");
  } else {
    SetHint("Power for " + InYards(FlickReach(ShotPower, ForceDecay)) + " yards.");
  }
}

void frmSnapwedge::HintNoKick() {
  SetHint("No kick: let go before the meter rose. Hold the left button a little longer.");
}

void frmSnapwedge::HintResult(std::int16_t MES) {
  Writing = False; // the verdict goes first
  switch (MES) {
  case Results::GoodKick:
    SetHint("Between the posts and over the bar: 1 point.");
    break;
  case Results::MissedKick:
    SetHint(MissReason(*this));
    break;
  case Results::Touchdown:
    SetHint("A corner over the edge on the third try: 6 points, and a kick for 1 more.");
    break;
  case Results::Turnover:
    SetHint(FallReason(*this));
    break;
  case Results::Bonus:
    SetHint("A corner on the circle on the first try: 3 points. Two tries are left.");
    break;
  case Results::Penalty:
    SetHint("Over the edge on the " + TryName(Shots) + ": that counts on the third try only.");
    break;
  default:
    SetHint(ShortReason(*this));
    break;
  }
}

void frmSnapwedge::HintOtherResult(std::int16_t MES) {
  Writing = False; // the verdict goes first
  static const char *const Texts[] = {
      "The other player's kick is good: 1 point.",
      "The other player's kick is no good.",
      "The other player has a Touchdown: 6 points, and a kick for 1 more.",
      "The other player's piece slid off the table.",
      "The other player reached the circle on the first try: 3 points.",
      "The other player crossed the edge before the third try.",
      "The other player's third try ended short of the edge.",
  };
  SetHint(Texts[MES - Results::First]);
}

void frmSnapwedge::HintWriting() {
  Writing = True;
  ShowHint();
}

void frmSnapwedge::HintWritten() {
  Writing = False;
  ShowHint();
}

void frmSnapwedge::HintLeft() {
  MouseKeys.Visible = false;
  Writing = False;
  SetHint("The other player has left. OK ends the game.");
}

void frmSnapwedge::SetHint(const std::string &text) {
  Hint = text;
  ShowHint();
}

void frmSnapwedge::ShowHint() {
  // While the line is down, the side on turn can play on.
  const bool stalled = LineIsBroken && (!program.MyTurn || LastWait);
  lblHint.Caption = stalled ? StalledHint : Writing ? WritingHint : Hint;
}

void frmSnapwedge::HintOver() {
  MouseKeys.Visible = false;
  SetHint(OtherSideOver || program.GameMode != "INET"
              ? "The match is over. A click on the front page ends the game."
              : "The match is over. Waiting for the other player's last result.");
}
