#include "platform/desktop/renderer/lens.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// The target's width in the frame falls with a root of its distance.
constexpr float NearShare = 0.34f;    ///< of the picture's width, by a target at `NearDistance`
constexpr float NearDistance = 36.4f; ///< scene units: from the camera at rest to the start of a possession
constexpr float LargestShare = 0.42f; ///< however near the target is
constexpr float ShareRoot = 2.4f;

// The height of the target's place: the lower third where it is seen from the side, near the middle from
// above.
constexpr float LowPlace = -0.58f;  ///< -1 is the picture's bottom, 1 its top
constexpr float HighPlace = -0.22f; ///< of a target seen from `Steep` or steeper
constexpr float Steep = 0.78f;      ///< radians below the horizon

constexpr float WidestHalf = 0.70f;  ///< radians: half of the widest horizontal angle
constexpr float TallestHalf = 0.60f; ///< radians: half of the widest vertical angle
constexpr float Room = 0.06f;        ///< radians between what is held and the picture's border
constexpr float TargetRoom = 0.8f;   ///< of the target's width, from its middle to the picture's border

constexpr float Jump = 12.0f;      ///< scene units from frame to frame: above it there is a cut
constexpr float AtTarget = 6.0f;   ///< scene units between the target and what belongs to it, as its aim does
constexpr float AimAhead = 45.0f;  ///< scene units of the aim that are held, from the target on ...
constexpr float AimHalf = 5.0f;    ///< half its width
constexpr float AimBehind = 7.0f;  ///< ... and behind it
constexpr float EdgeReach = 32.0f; ///< scene units from the target within which the table's edge is held
constexpr float LeastLoss = 0.002f; ///< of its speed, from frame to frame, by a target that will stop
constexpr float Level = 0.0001f;    ///< scene units a frame, up or down, of what slides
constexpr float EaseShare = 0.25f;  ///< of the way to the wanted framing, each frame
constexpr float Still = 0.0005f;    ///< radians, or of the height, below which nothing is left of that way
// While the camera rests, small motions of the aim don't move the view: it would swim.
constexpr float Slack = 0.05f;        ///< radians, less than `Room`
constexpr float HeightSlack = 0.15f;  ///< of the height
constexpr float SteepestPitch = 1.5f; ///< radians

constexpr float HoldReach =
    0.95f; ///< radians aside of the target: what moves farther off can't be held with it
constexpr float StopReach =
    0.70f; ///< radians aside of the target that are shown of the way to where it will stop
constexpr float NearerStop = 0.95f; ///< of the way to the stop, until it is within that
constexpr float Aside = 1.4f;       ///< radians aside of the picture's middle: a picture is never so wide
constexpr float CardSide =
    0.42f; ///< of the way from the picture's middle to its right: cards begin a little beyond

QVector3D V(const Vector &v) { return {v.x, v.y, v.z}; }
Vector V(const QVector3D &v) { return {v.x(), v.y(), v.z()}; }
float Distance(const Vector &a, const Vector &b) { return (V(a) - V(b)).length(); }

// A camera never rolls: its right hand lies level and tells its heading even where it looks straight down.
float YawOf(const Transform &camera) { return std::atan2(-camera.Right.z, camera.Right.x); }
float PitchOf(const Transform &camera) { return std::asin(std::clamp(camera.Direction.y, -1.0f, 1.0f)); }

Vector Mapped(const Transform &t, const Vector &v) { return V(MatrixOf(t).map(V(v))); }

/// The direction of a place from the camera, radians.
struct Sight {
  float Yaw;   ///< from the camera's heading to the right
  float Pitch; ///< above the horizon
};

Sight See(const Transform &camera, const Vector &place) {
  const QVector3D way = V(place) - V(camera.Origin);
  const float level = std::hypot(way.x(), way.z());
  return {std::remainder(std::atan2(way.x(), way.z()) - YawOf(camera), 6.2831853f),
          std::atan2(way.y(), level)};
}

/// A range of angles, radians.
struct Range {
  float Low, High;
  void Take(float angle, float room) {
    Low = std::min(Low, angle - room);
    High = std::max(High, angle + room);
  }
  float Half() const { return (High - Low) / 2; }
};

/// The middle of a picture of `half` to both sides that shows a range, as near to `wanted` as can be. Where
/// the range doesn't fit, the picture shows as much of it as `must` leaves room for.
float Middle(const Range &range, float half, float wanted, const Range &must) {
  if (range.Half() <= half) return std::clamp(wanted, range.High - half, range.Low + half);
  const float low = must.High - half, high = must.Low + half;
  return std::clamp((range.Low + range.High) / 2, std::min(low, high), std::max(low, high));
}

/// Where a target that slides and slows down will stop: it loses the same speed at each step.
std::optional<Vector> StopOf(const Vector &target, const QVector3D &step, const QVector3D &lastStep) {
  const float speed = step.length(), loss = lastStep.length() - speed;
  if (speed == 0.0f || loss < LeastLoss * speed || std::abs(step.y()) > Level) return {};
  return V(V(target) + step * (speed / (2 * loss)));
}

/// The point of the table's edge that lies nearest to the target, if it is near.
std::optional<Vector> EdgeNear(std::span<const Seen> scene, const Vector &target) {
  Bounds table;
  for (const Seen &seen : scene) {
    if (IsWide(seen.Box) && seen.Box.Extent() > table.Extent()) table = Moved(seen.Box, seen.Place);
  }
  if (table.Extent() == 0.0f) return {};
  Vector edge{std::clamp(target.x, table.Low.x, table.High.x), table.High.y,
              std::clamp(target.z, table.Low.z, table.High.z)};
  const float toSide = table.High.x - std::abs(target.x), toEnd = table.High.z - std::abs(target.z);
  if (std::min(toSide, toEnd) > 0.0f) { // above the table
    (toSide < toEnd ? edge.x : edge.z) = std::copysign(table.High.x, toSide < toEnd ? target.x : target.z);
  }
  if (Distance(edge, target) > EdgeReach) return {};
  return edge;
}

/// Moves a value a share of the way to another. Returns whether it has arrived.
bool Approach(float &value, float to, float still) {
  value = std::abs(to - value) <= still ? to : value + (to - value) * EaseShare;
  return value == to;
}

} // namespace

bool Lens::Near(const Framing &a, const Framing &b) {
  return std::abs(a.Yaw - b.Yaw) < Slack && std::abs(a.Pitch - b.Pitch) < Slack &&
         std::abs(std::log(a.Height / b.Height)) < HeightSlack;
}

bool Lens::Ease(Framing &framing, const Framing &to) {
  // Heights ease on a logarithmic scale, so that zooming in and out takes the same time.
  float height = std::log(framing.Height), toHeight = std::log(to.Height);
  const bool there = Approach(height, toHeight, Still);
  framing.Height = there ? to.Height : std::exp(height);
  const bool turned = Approach(framing.Yaw, to.Yaw, Still), raised = Approach(framing.Pitch, to.Pitch, Still);
  return there && turned && raised;
}

View Lens::Next(const Direct3DRMFrame3 &camera, std::span<const Seen> scene, float aspect) {
  const Transform from = camera.World();
  const auto looked = camera.LookedAt();
  const auto subject = std::ranges::find(scene, looked.get(), &Seen::Frame);
  if (subject == scene.end()) {
    settled_ = true;
    return {from};
  }
  const Vector target = subject->Place.Origin;
  const QVector3D step = V(target) - V(target_);
  const bool cut = !started_ || Distance(from.Origin, from_.Origin) > Jump || step.length() > Jump;
  FollowMovers(scene, looked.get(), cut, step.length() > 0);
  const auto held = Held(from, scene, *subject, cut ? QVector3D() : step);
  const bool swings = (cut || step.length() == 0) && std::ranges::any_of(movers_, &Mover::Moves);
  const Framing wanted = Wanted(from, *subject, held, swings, aspect);
  const bool still = started_ && from == from_ && step.length() == 0;
  if (!still || !Near(wanted, wanted_)) wanted_ = wanted;

  // Easing twice starts a change as softly as it ends.
  if (cut) approached_ = framing_ = wanted_;
  const bool approached = Ease(approached_, wanted_), framed = Ease(framing_, approached_);
  settled_ = approached && framed;
  started_ = true;
  from_ = from;
  target_ = target;
  step_ = cut ? QVector3D() : step;

  const float yaw = YawOf(from) + framing_.Yaw;
  const float pitch = std::clamp(PitchOf(from) + framing_.Pitch, -SteepestPitch, SteepestPitch);
  const QVector3D right(std::cos(yaw), 0, -std::sin(yaw));
  const QVector3D direction(std::sin(yaw) * std::cos(pitch), std::sin(pitch),
                            std::cos(yaw) * std::cos(pitch));
  return {{from.Origin, V(right), V(QVector3D::crossProduct(direction, right)), V(direction)},
          framing_.Height};
}

/// Finds the meshes that move besides the target, and the space they cover. While the target rests that space
/// is all they have covered since the cut, so that the view doesn't swing with the posts.
void Lens::FollowMovers(std::span<const Seen> scene, const Direct3DRMFrame3 *target, bool cut,
                        bool targetMoves) {
  std::vector<Mover> now;
  for (const Seen &seen : scene) {
    if (seen.Frame == target) continue;
    const auto last = std::ranges::find(movers_, seen.Frame, &Mover::Frame);
    const bool known = last != movers_.end();
    const float way = known ? Distance(seen.Place.Origin, last->Origin) : 0.0f;
    const bool moves = (way > 0.0f && way <= Jump) || (known && last->Moves && !cut);
    Bounds covered = Moved(seen.Box, seen.Place);
    // Only the bar of the posts, at their frame's origin, and what is above it must be in the frame.
    covered.Low.y = std::clamp(seen.Place.Origin.y, covered.Low.y, covered.High.y);
    if (known && last->Moves && !cut && !targetMoves) {
      covered.Widen(last->Covered.Low);
      covered.Widen(last->Covered.High);
    }
    now.push_back({seen.Frame, seen.Place.Origin, moves, covered});
  }
  movers_ = std::move(now);
}

/// The places that the frame should hold besides the target.
std::vector<Vector> Lens::Held(const Transform &camera, std::span<const Seen> scene, const Seen &subject,
                               const QVector3D &step) const {
  const Vector &target = subject.Place.Origin;
  std::vector<Vector> held;
  for (const Mover &mover : movers_) {
    for (int corner = 0; mover.Moves && corner < 8; ++corner) held.push_back(mover.Covered.Corner(corner));
  }
  const float own = See(camera, target).Yaw;
  std::erase_if(held,
                [&](const Vector &place) { return std::abs(See(camera, place).Yaw - own) > HoldReach; });
  for (const Seen &seen : scene) {
    if (seen.Frame == subject.Frame || IsWide(seen.Box) || Distance(seen.Place.Origin, target) > AtTarget)
      continue;
    Bounds aim = seen.Box;
    aim.Low.z = std::max(aim.Low.z, -AimAhead);
    aim.High.z = std::min(aim.High.z, AimBehind);
    aim.Low = {std::max(aim.Low.x, -AimHalf), 0, aim.Low.z};
    aim.High = {std::min(aim.High.x, AimHalf), 0, aim.High.z};
    for (int corner = 0; corner < 8; ++corner) held.push_back(Mapped(seen.Place, aim.Corner(corner)));
  }
  if (auto stop = StopOf(target, step, step_)) {
    while (std::abs(See(camera, *stop).Yaw - own) > StopReach)
      stop = V(V(target) + (V(*stop) - V(target)) * NearerStop);
    held.push_back(*stop);
  }
  if (const auto edge = EdgeNear(scene, target)) held.push_back(*edge);
  return held;
}

Lens::Framing Lens::Wanted(const Transform &camera, const Seen &subject, std::span<const Vector> held,
                           bool swings, float aspect) const {
  const float width = subject.Box.Extent();
  const float distance = std::max(Distance(camera.Origin, subject.Place.Origin), NearPlane);
  const float share = NearShare * std::pow(NearDistance / distance, 1 / ShareRoot);
  const float room = TargetRoom * width / distance;
  const Sight own = See(camera, subject.Place.Origin);
  Framing framing;
  framing.Height = width / (distance * std::min(share, LargestShare) * aspect);

  Range across{own.Yaw - room, own.Yaw + room};
  for (const Vector &place : held) {
    across.Take(std::clamp(See(camera, place).Yaw, own.Yaw - HoldReach, own.Yaw + HoldReach), Room);
  }
  // The posts will soon swing to the other side of a resting target.
  const float farther = std::max(own.Yaw - across.Low, across.High - own.Yaw);
  if (swings && farther <= WidestHalf) across = {own.Yaw - farther, own.Yaw + farther};
  // Cards cover the right side.
  const float left = own.Yaw - across.Low;
  across.High = std::max(across.High, own.Yaw + left * (1 - CardSide) / (1 + CardSide));
  framing.Height = std::max(framing.Height, 2 * std::tan(std::min(across.Half(), WidestHalf)) / aspect);
  const auto aim = [&] {
    const float half = std::atan(framing.Height * aspect / 2);
    framing.Yaw =
        Middle(across, half, own.Yaw, {own.Yaw - room, own.Yaw + std::max(room, half * (1 - CardSide))});
  };
  aim();

  const Range mustUp{own.Pitch - room / 2, own.Pitch + room / 2};
  Range up = mustUp;
  for (const Vector &place : held) {
    const Sight sight = See(camera, place);
    const float aside = std::abs(sight.Yaw - framing.Yaw);
    // Perspective moves places away from the middle of the frame up or down.
    if (aside < Aside) up.Take(std::atan(std::tan(sight.Pitch) / std::cos(aside)), Room);
  }
  framing.Height = std::max(framing.Height, 2 * std::tan(std::min(up.Half(), TallestHalf)));
  aim();
  const float place = LowPlace + (HighPlace - LowPlace) * std::clamp(-own.Pitch / Steep, 0.0f, 1.0f);
  const float middle = own.Pitch - std::atan(place * framing.Height / 2);
  framing.Pitch = Middle(up, std::atan(framing.Height / 2), middle, mustUp) - PitchOf(camera);
  return framing;
}
