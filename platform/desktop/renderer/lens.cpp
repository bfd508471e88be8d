#include "platform/desktop/renderer/lens.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace {

// The target covers the share `NearShare` * (`NearDistance` / distance) ^ (1 / `ShareRoot`) of the frame's
// width, at most `LargestShare`. With an exponent of 1 the field of view would be constant.
constexpr float NearShare = 0.34f;
constexpr float NearDistance = 36.4f; ///< from the initial camera to the start of a possession, scene units
constexpr float LargestShare = 0.42f;
constexpr float ShareRoot = 2.4f;

// The target's height in the frame: the lower third if seen from the side, nearer to the centre from above,
// and above it for a kick high in the air, so that the field below shows its height. In a fall, which is seen
// from below the table, it is in the upper third, where it comes out behind the table's edge.
constexpr float LowPlace = -0.58f;  ///< at the camera's own level; -1 is the bottom of the frame, 1 the top
constexpr float HighPlace = -0.22f; ///< `Steep` or more below the camera
constexpr float Steep = 0.78f;      ///< radians
constexpr float RisenPlace = 0.45f; ///< `Risen` or more above the camera
constexpr float Risen = 0.25f;      ///< radians
constexpr float FallPlace = 0.6f;   ///< in a fall, at the camera's own level or above it

// Limits of the field of view.
constexpr float WidestHalf = 0.70f;  ///< half of the horizontal angle, radians
constexpr float TallestHalf = 0.60f; ///< half of the vertical angle, radians

// Distances to the border of the frame.
constexpr float Margin = 0.06f;      ///< of every point that must be visible, radians
constexpr float TargetMargin = 0.8f; ///< of the target's centre, target widths
// A result card covers the right side of the frame. The target stays to the left of it.
constexpr float CardSide = 0.45f; ///< largest x of the target; 0 is the centre of the frame, 1 the border

// Which points must be visible besides the target.
constexpr float AtTarget = 6.0f;    ///< largest distance from the aim's origin to the target, scene units
constexpr float AimAhead = 45.0f;   ///< part of the aim ahead of its origin, scene units
constexpr float AimBehind = 7.0f;   ///< part behind it, scene units
constexpr float AimHalf = 5.0f;     ///< part on either side of it, scene units
constexpr float EdgeReach = 32.0f;  ///< largest distance from the table's edge to the target, scene units
constexpr float EdgeFar = 60.0f;    ///< smallest distance at which the edge has no effect, scene units
constexpr float EdgeDrop = 0.15f;   ///< largest pitch below the target at which the edge is shown, radians
constexpr float EdgeDropFar = 0.3f; ///< smallest pitch below the target at which it has no effect, radians
constexpr float ShadowPart = 0.9f;  ///< of the way down to the target's shadow that must be in view
constexpr float PointReach = 0.87f; ///< largest yaw from the target at which a point can be shown, radians
constexpr float FarReach = 1.3f;    ///< smallest yaw from the target at which a point has no effect, radians
constexpr float StopReach = 0.46f;  ///< largest yaw to the point where the target will stop, radians
constexpr float StopStep = 0.95f;   ///< factor by which a farther stop is brought nearer, repeatedly
constexpr float WidestYaw = 1.4f;   ///< from the frame's centre, radians; no frame is so wide

// How a sliding target is recognised.
constexpr float LeastLoss = 0.002f;    ///< loss of speed per frame, as a share of the speed
constexpr float LevelMotion = 0.0001f; ///< largest vertical motion, scene units per frame

// Motion of the view.
constexpr float Jump = 12.0f;         ///< motion between two frames above which the view cuts, scene units
constexpr float EaseShare = 0.25f;    ///< share of the remaining difference that each frame covers
constexpr float Still = 0.0005f;      ///< difference that ends the easing, radians or logarithm of the height
constexpr float SteepestPitch = 1.5f; ///< of the view, radians
// While camera and target rest, smaller changes of the wanted framing don't move the view: it would sway with
// the aim.
constexpr float Slack = 0.05f;       ///< radians, less than `Margin`
constexpr float HeightSlack = 0.15f; ///< logarithm of the height

Vector FromQt(const QVector3D &v) { return {v.x(), v.y(), v.z()}; }

/// A point brought nearer to the target, all the way if its distance or angle is `far` or more. A point that
/// comes within reach thus widens the view smoothly.
QVector3D Faded(const QVector3D &point, const QVector3D &target, float away, float reach, float far) {
  return target + (point - target) * std::clamp((far - away) / (far - reach), 0.0f, 1.0f);
}

// The camera never rolls, so its right vector is horizontal. Yaw is computed from that vector because the
// direction has no yaw when the camera looks straight down.
float YawOf(const Transform &camera) { return std::atan2(-camera.Right.z, camera.Right.x); }
float PitchOf(const Transform &camera) { return std::asin(std::clamp(camera.Direction.y, -1.0f, 1.0f)); }

/// The direction from the camera to a point, radians.
struct Bearing {
  float Yaw;   ///< to the right of the camera's direction
  float Pitch; ///< above the horizon
};

Bearing BearingOf(const Transform &camera, const QVector3D &point) {
  const QVector3D way = point - ToQt(camera.Origin);
  const float level = std::hypot(way.x(), way.z());
  return {std::remainder(std::atan2(way.x(), way.z()) - YawOf(camera), 6.2831853f),
          std::atan2(way.y(), level)};
}

/// The yaw between two points as seen by the camera, radians, at least 0.
float Apart(const Transform &camera, const QVector3D &a, const QVector3D &b) {
  return std::abs(BearingOf(camera, a).Yaw - BearingOf(camera, b).Yaw);
}

/// A range of angles, radians.
struct Range {
  float Low, High;
  void Include(float angle, float margin) {
    Low = std::min(Low, angle - margin);
    High = std::max(High, angle + margin);
  }
  float Half() const { return (High - Low) / 2; }
};

/// Finds the centre of a frame that spans `half` radians to either side and contains a range of angles.
/// Returns the centre closest to `wanted`. If the range is wider than the frame, returns the centre closest
/// to the middle of the range at which the frame still contains `must`.
float CentreOf(const Range &range, float half, float wanted, const Range &must) {
  if (range.Half() <= half) return std::clamp(wanted, range.High - half, range.Low + half);
  const float low = must.High - half, high = must.Low + half;
  return std::clamp((range.Low + range.High) / 2, std::min(low, high), std::max(low, high));
}

/// The point where a sliding target will stop; nothing if it isn't slowing down. It loses the same speed in
/// every frame, so from speed v with the loss a it slides another v^2 / (2 a), as under constant
/// deceleration.
std::optional<QVector3D> StopOf(const QVector3D &target, const QVector3D &step, const QVector3D &lastStep) {
  const float speed = step.length(), loss = lastStep.length() - speed;
  if (speed == 0.0f || loss < LeastLoss * speed || std::abs(step.y()) > LevelMotion) return {};
  return target + step * (speed / (2 * loss));
}

/// The largest box of ground; nothing if there is none.
std::optional<Bounds> TableOf(std::span<const Item> scene) {
  std::optional<Bounds> table;
  for (const Item &item : scene) {
    if (item.Own.IsWide() && (!table || item.Box.Extent() > table->Extent())) table = item.Box;
  }
  return table;
}

/// The point of the table's top below a place, or nearest to that point.
QVector3D Below(const Bounds &table, const QVector3D &place) {
  return {std::clamp(place.x(), table.Low.x(), table.High.x()), table.High.y(),
          std::clamp(place.z(), table.Low.z(), table.High.z())};
}

/// The point of the table's edge nearest to the target, faded.
QVector3D EdgeNear(const Bounds &table, const QVector3D &target) {
  QVector3D edge = Below(table, target);
  const float toSide = table.High.x() - std::abs(target.x()), toEnd = table.High.z() - std::abs(target.z());
  if (std::min(toSide, toEnd) > 0.0f) { // over the table, where clamping leaves x and z as they are
    const int axis = toSide < toEnd ? 0 : 2;
    edge[axis] = std::copysign(table.High[axis], target[axis]);
  }
  return Faded(edge, target, edge.distanceToPoint(target), EdgeReach, EdgeFar);
}

/// A box widened by its path over the table from side to side.
Bounds Swept(Bounds box, const Bounds &table) {
  const float half = (box.High.x() - box.Low.x()) / 2;
  box.Low.setX(std::min(box.Low.x(), table.Low.x() - half));
  box.High.setX(std::max(box.High.x(), table.High.x() + half));
  return box;
}

/// Moves a value toward another by `EaseShare` of the difference. Returns whether it has arrived.
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
  // The logarithm of the height is eased, so that zooming in and zooming out take the same time.
  float height = std::log(framing.Height), toHeight = std::log(to.Height);
  const bool there = Approach(height, toHeight, Still);
  framing.Height = there ? to.Height : std::exp(height);
  const bool turned = Approach(framing.Yaw, to.Yaw, Still), raised = Approach(framing.Pitch, to.Pitch, Still);
  return there && turned && raised;
}

CameraView Lens::Next(const Direct3DRMFrame3 &camera, std::span<const Item> scene, float aspect) {
  const Transform from = camera.World();
  const auto looked = camera.LookedAt();
  const auto subject = std::ranges::find(scene, looked.get(), &Item::Frame);
  if (subject == scene.end()) {
    settled_ = true;
    return {from};
  }
  const QVector3D target = subject->Origin(), step = target - target_;
  const bool cut =
      !started_ || ToQt(from.Origin).distanceToPoint(ToQt(from_.Origin)) > Jump || step.length() > Jump;
  if (cut) movers_.clear(); // what moves from now on counts, not what has returned to its start
  FollowMovers(scene, looked.get(), step.length() > 0);
  // The only meshes that move while the target rests are the posts. They go from side to side over the whole
  // table, so room for that on both sides avoids a later change of the view.
  const auto table = TableOf(scene);
  bool symmetric = false;
  for (Mover &mover : movers_) {
    if (!mover.Moves || (!cut && step.length() > 0)) continue;
    const Bounds path = table ? Swept(mover.Covered, *table) : mover.Covered;
    const bool room =
        Apart(from, path.Low, target) <= PointReach && Apart(from, path.High, target) <= PointReach;
    if (room) mover.Covered = path;
    mover.Shown = room || (mover.Shown && mover.Step == 0); // as at the end of a kick
    symmetric = symmetric || room;
  }
  const auto points = PointsToShow(from, scene, *subject, table, cut ? QVector3D() : step);
  const bool falls = table && from.Origin.y < table->High.y();
  const Framing wanted = Wanted(from, *subject, points, symmetric, falls, aspect);
  const bool still = started_ && from == from_ && step.length() == 0;
  if (!still || !Near(wanted, wanted_)) wanted_ = wanted;

  // Two easings in series, so that the view also accelerates smoothly.
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
  return {{from.Origin, FromQt(right), FromQt(QVector3D::crossProduct(direction, right)), FromQt(direction)},
          framing_.Height};
}

/// Updates the meshes other than the target.
void Lens::FollowMovers(std::span<const Item> scene, const Direct3DRMFrame3 *target, bool targetMoves) {
  std::vector<Mover> now;
  for (const Item &item : scene) {
    if (item.Frame == target) continue;
    const QVector3D origin = item.Origin();
    const auto last = std::ranges::find(movers_, item.Frame, &Mover::Frame);
    const bool known = last != movers_.end();
    const float moved = known ? origin.distanceToPoint(last->Origin) : 0.0f;
    const bool moves = (moved > 0.0f && moved <= Jump) || (known && last->Moves);
    Bounds covered = item.Box;
    // Only the part above the origin has to be visible: of the posts, whose origin is at the bar, not the
    // foot.
    covered.Low.setY(std::clamp(origin.y(), covered.Low.y(), covered.High.y()));
    if (targetMoves) covered.High.setY(covered.Low.y()); // the bar, above or below which the target passes
    // A mesh without room for its path, as the posts seen from the side, would swing a resting view.
    const bool shown = moves && (targetMoves || (known && last->Shown));
    now.push_back({item.Frame, origin, moved, moves, shown, covered});
  }
  movers_ = std::move(now);
}

/// The corners of the moving meshes to show, faded.
std::vector<QVector3D> Lens::MoverPoints(const Transform &camera, const QVector3D &target) const {
  std::vector<QVector3D> points;
  for (const Mover &mover : movers_) {
    if (mover.Shown) std::ranges::copy(mover.Covered.Corners(), std::back_inserter(points));
  }
  for (QVector3D &point : points)
    point = Faded(point, target, Apart(camera, point, target), PointReach, FarReach);
  return points;
}

/// The points that the frame should contain besides the target.
std::vector<QVector3D> Lens::PointsToShow(const Transform &camera, std::span<const Item> scene,
                                          const Item &subject, const std::optional<Bounds> &table,
                                          const QVector3D &step) const {
  const QVector3D target = subject.Origin();
  std::vector<QVector3D> points = MoverPoints(camera, target);
  for (const Item &item : scene) {
    // The aim is a mesh at the target that isn't ground. It is as long as the field, so only its near part
    // counts.
    if (item.Frame == subject.Frame || item.Own.IsWide() || item.Origin().distanceToPoint(target) > AtTarget)
      continue;
    Bounds aim = item.Own;
    aim.Low = {std::max(aim.Low.x(), -AimHalf), 0, std::max(aim.Low.z(), -AimAhead)};
    aim.High = {std::min(aim.High.x(), AimHalf), 0, std::min(aim.High.z(), AimBehind)};
    for (const QVector3D &corner : aim.Corners()) points.push_back(item.ToWorld.map(corner));
  }
  if (auto stop = StopOf(target, step, step_)) {
    while (Apart(camera, *stop, target) > StopReach) stop = target + (*stop - target) * StopStep;
    points.push_back(*stop);
  }
  if (table) {
    const QVector3D edge = EdgeNear(*table, target);
    // Once the target is past the near edge, it would pull the view down to the feet of the player.
    const float drop = BearingOf(camera, target).Pitch - BearingOf(camera, edge).Pitch;
    // An edge that the target leaves would pull the view back.
    const bool leaves = QVector3D::dotProduct(edge - target, step) < 0;
    if (!leaves) points.push_back(Faded(edge, target, drop, EdgeDrop, EdgeDropFar));
    // The shadow of a flying target shows its height.
    const QVector3D shadow = Below(*table, target);
    if (target.y() > shadow.y()) points.push_back(target + (shadow - target) * ShadowPart);
  }
  return points;
}

/// The framing that shows the target and these points. Yaw and pitch are treated as independent of each
/// other, except for the effect of perspective on the height of a point at the side.
///
/// @param symmetric  whether to leave equal room on both sides of the target
/// @param falls  whether the camera is below the table
Lens::Framing Lens::Wanted(const Transform &camera, const Item &subject, std::span<const QVector3D> points,
                           bool symmetric, bool falls, float aspect) const {
  const float width = subject.Own.Extent();
  const float distance = std::max(ToQt(camera.Origin).distanceToPoint(subject.Origin()), NearPlane);
  const float share = NearShare * std::pow(NearDistance / distance, 1 / ShareRoot);
  const float margin = TargetMargin * width / distance;
  const Bearing own = BearingOf(camera, subject.Origin());
  Framing framing;
  // At this distance the frame is distance * Height * aspect wide, and the target is width wide.
  framing.Height = width / (distance * std::min(share, LargestShare) * aspect);

  Range across{own.Yaw - margin, own.Yaw + margin};
  for (const QVector3D &point : points) {
    across.Include(std::clamp(BearingOf(camera, point).Yaw, own.Yaw - PointReach, own.Yaw + PointReach),
                   Margin);
  }
  const float farther = std::max(own.Yaw - across.Low, across.High - own.Yaw);
  if (symmetric && farther <= WidestHalf) across = {own.Yaw - farther, own.Yaw + farther};
  // A card covers the frame from x = CardSide to the right. The posts stay to the left of it too while a kick
  // flies at them.
  float right = own.Yaw;
  for (const QVector3D &point : MoverPoints(camera, subject.Origin())) {
    if (!symmetric) right = std::max(right, std::min(BearingOf(camera, point).Yaw, own.Yaw + PointReach));
  }
  // (1 + CardSide) halves of the frame are to the left of x = CardSide, (1 - CardSide) to its right.
  across.High = std::max(across.High, right + (right - across.Low) * (1 - CardSide) / (1 + CardSide));
  framing.Height = std::max(framing.Height, 2 * std::tan(std::min(across.Half(), WidestHalf)) / aspect);
  const auto aim = [&] {
    const float half = std::atan(framing.Height * aspect / 2);
    framing.Yaw = CentreOf(across, half, own.Yaw,
                           {own.Yaw - margin, own.Yaw + std::max(margin, half * (1 - CardSide))});
  };
  aim();

  const Range target{own.Pitch - margin / 2, own.Pitch + margin / 2};
  Range up = target;
  for (const QVector3D &point : points) {
    const Bearing bearing = BearingOf(camera, point);
    const float aside = std::abs(bearing.Yaw - framing.Yaw);
    // In perspective a point at this yaw from the frame's centre appears at the height tan(pitch) / cos(yaw).
    if (aside < WidestYaw) up.Include(std::atan(std::tan(bearing.Pitch) / std::cos(aside)), Margin);
  }
  framing.Height = std::max(framing.Height, 2 * std::tan(std::min(up.Half(), TallestHalf)));
  aim();
  const float level = falls ? FallPlace : LowPlace;
  const float place = level + (HighPlace - level) * std::clamp(-own.Pitch / Steep, 0.0f, 1.0f) +
                      (std::max(RisenPlace, level) - level) * std::clamp(own.Pitch / Risen, 0.0f, 1.0f);
  const float centre = own.Pitch - std::atan(place * framing.Height / 2);
  framing.Pitch = CentreOf(up, std::atan(framing.Height / 2), centre, target) - PitchOf(camera);
  return framing;
}
