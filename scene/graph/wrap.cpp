#include "scene/graph/wrap.h"

#include "scene/graph/scene_error.h"

#include <algorithm>
#include <cmath>

Direct3DRMWrap::Direct3DRMWrap(const Transform &system, const Vector &origin, const Vector &direction,
                               const Vector &up, float ou, float ov, float su, float sv)
    : ou_(ou), ov_(ov), su_(su), sv_(sv) {
  for (const float value : {origin.x, origin.y, origin.z, direction.x, direction.y, direction.z, up.x, up.y,
                            up.z, ou, ov, su, sv}) {
    if (!std::isfinite(value)) throw SceneError("a wrap has an argument that isn't finite");
  }
  const auto out = [&](double x, double y, double z) {
    return Row{system.Right.x * x + system.Up.x * y + system.Direction.x * z,
               system.Right.y * x + system.Up.y * y + system.Direction.y * z,
               system.Right.z * x + system.Up.z * y + system.Direction.z * z};
  };
  const Row place = out(origin.x, origin.y, origin.z);
  origin_ = {system.Origin.x + place.x, system.Origin.y + place.y, system.Origin.z + place.z};
  // Without an up vector the wrap is projected from above: u along x, v along z.
  if (up == Vector{}) {
    along_ = out(1, 0, 0);
    across_ = out(0, 0, 1);
    return;
  }
  const auto unit = [](Row r) {
    const double length = std::sqrt(r.x * r.x + r.y * r.y + r.z * r.z);
    if (!(length > 0.0)) throw SceneError("the up vector of a wrap is parallel to its direction");
    return Row{r.x / length, r.y / length, r.z / length};
  };
  const Row d = unit(out(direction.x, direction.y, direction.z)), u = out(up.x, up.y, up.z);
  const double lean = u.x * d.x + u.y * d.y + u.z * d.z;
  across_ = unit({u.x - d.x * lean, u.y - d.y * lean, u.z - d.z * lean});
  along_ = {across_.y * d.z - across_.z * d.y, across_.z * d.x - across_.x * d.z,
            across_.x * d.y - across_.y * d.x};
}

void Direct3DRMWrap::Apply(const Ref<Direct3DRMMeshBuilder3> &mesh) const {
  if (!mesh) throw SceneError("no mesh to wrap");
  const std::vector<Vector> &positions = mesh->Data().Positions;
  std::vector<TextureCoordinate> coordinates(positions.size());
  std::ranges::transform(positions, coordinates.begin(), [this](const Vector &v) -> TextureCoordinate {
    const double x = v.x - origin_.x, y = v.y - origin_.y, z = v.z - origin_.z;
    return {static_cast<float>(su_ * (x * along_.x + y * along_.y + z * along_.z) - ou_),
            static_cast<float>(sv_ * (x * across_.x + y * across_.y + z * across_.z) - ov_)};
  });
  mesh->SetTextureCoordinates(std::move(coordinates));
}
