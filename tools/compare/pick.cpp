// Ray picks of the scene graph's tree and of Embree, the same rays on the same faces, in turn: medians and
// their ratio.

#include "scene/graph/triangle_tree.h"
#include "tools/median.h"

#include <embree3/rtcore.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr std::size_t RayCount = 10000;
constexpr int Turns = 15;
constexpr double LargestDifference =
    1e-3; ///< of two distances, scene units: Embree computes in single precision

struct Surface {
  std::vector<Vector> Positions;
  std::vector<std::uint32_t> Indices;
};

/// A hilly square of 2 * columns * rows faces.
Surface Hills(std::uint32_t columns, std::uint32_t rows) {
  Surface hills;
  for (std::uint32_t row = 0; row <= rows; ++row)
    for (std::uint32_t column = 0; column <= columns; ++column) {
      const float x = 100.0f * static_cast<float>(column) / static_cast<float>(columns) - 50.0f;
      const float z = 100.0f * static_cast<float>(row) / static_cast<float>(rows) - 50.0f;
      hills.Positions.push_back({x, 5.0f * std::sin(x * 0.2f) * std::cos(z * 0.3f), z});
    }
  for (std::uint32_t row = 0; row < rows; ++row)
    for (std::uint32_t column = 0; column < columns; ++column) {
      const std::uint32_t first = row * (columns + 1) + column, below = first + columns + 1;
      hills.Indices.insert(hills.Indices.end(), {first, below, first + 1, first + 1, below, below + 1});
    }
  return hills;
}

/// Nanoseconds of processor time a call.
template <class Pick>
double Time(const std::vector<D3DRMRAY> &rays, std::vector<double> &distances, Pick &&pick) {
  const std::clock_t start = std::clock();
  for (std::size_t i = 0; i < rays.size(); ++i) distances[i] = pick(rays[i]);
  return static_cast<double>(std::clock() - start) * 1e9 / CLOCKS_PER_SEC / static_cast<double>(rays.size());
}

/// @returns whether both found the same distances
bool Compare(RTCDevice device, const Surface &surface) {
  TriangleTree tree;
  tree.Build(surface.Positions, surface.Indices);

  RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
  const auto fill = [&]<class T>(RTCBufferType type, RTCFormat format, std::size_t size,
                                 const std::vector<T> &from) {
    const std::size_t bytes = from.size() * sizeof(T);
    void *to = rtcSetNewGeometryBuffer(geometry, type, 0, format, size, bytes / size);
    std::copy(from.begin(), from.end(), static_cast<T *>(to));
  };
  fill(RTC_BUFFER_TYPE_VERTEX, RTC_FORMAT_FLOAT3, sizeof(Vector), surface.Positions);
  fill(RTC_BUFFER_TYPE_INDEX, RTC_FORMAT_UINT3, 3 * sizeof(std::uint32_t), surface.Indices);
  rtcCommitGeometry(geometry);
  RTCScene scene = rtcNewScene(device);
  rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST); // watertight, as ours is
  rtcAttachGeometry(scene, geometry);
  rtcReleaseGeometry(geometry);
  rtcCommitScene(scene);

  std::mt19937 random(1);
  const auto within = [&](float low, float high) {
    return std::uniform_real_distribution(low, high)(random);
  };
  std::vector<D3DRMRAY> rays;
  for (std::size_t i = 0; i < RayCount; ++i)
    rays.push_back({{within(-0.5f, 0.5f), -1.0f, within(-0.5f, 0.5f)},
                    {within(-45.0f, 45.0f), within(10.0f, 40.0f), within(-45.0f, 45.0f)}});

  const auto own = [&](const D3DRMRAY &ray) { return tree.Intersect(surface.Positions, ray).value_or(-1.0); };
  const auto other = [&](const D3DRMRAY &ray) {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit hit{};
    hit.ray.org_x = ray.Origin.x;
    hit.ray.org_y = ray.Origin.y;
    hit.ray.org_z = ray.Origin.z;
    hit.ray.dir_x = ray.Direction.x;
    hit.ray.dir_y = ray.Direction.y;
    hit.ray.dir_z = ray.Direction.z;
    hit.ray.tfar = std::numeric_limits<float>::infinity();
    hit.ray.mask = ~0U;
    hit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(scene, &context, &hit);
    return hit.hit.geomID == RTC_INVALID_GEOMETRY_ID ? -1.0 : static_cast<double>(hit.ray.tfar);
  };
  std::vector<double> ownDistances(RayCount), otherDistances(RayCount), ownTimes, otherTimes;
  for (int turn = 0; turn < Turns; ++turn) {
    ownTimes.push_back(Time(rays, ownDistances, own));
    otherTimes.push_back(Time(rays, otherDistances, other));
  }
  rtcReleaseScene(scene);
  std::size_t different = 0;
  for (std::size_t i = 0; i < RayCount; ++i)
    if (std::abs(ownDistances[i] - otherDistances[i]) > LargestDifference) ++different;
  std::printf("%7zu faces: ours %6.0f ns, Embree %6.0f ns, ratio %.2f; %zu of %zu rays differ\n",
              surface.Indices.size() / 3, Median(ownTimes), Median(otherTimes),
              Median(ownTimes) / Median(otherTimes), different, RayCount);
  return different == 0;
}

} // namespace

int main() {
  RTCDevice device = rtcNewDevice("threads=1");
  bool same = Compare(device, Hills(3, 2));
  same = Compare(device, Hills(25, 20)) && same;
  same = Compare(device, Hills(250, 200)) && same;
  rtcReleaseDevice(device);
  return same ? 0 : 1;
}
