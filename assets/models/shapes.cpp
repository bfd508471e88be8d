#include "shapes.h"

#include <algorithm>
#include <cmath>

void Lathe(Mesh &mesh, const Point &centre, const std::vector<ProfilePoint> &profile, int segments,
           bool smooth) {
  const std::size_t last = profile.size() - 1;
  // Normal of the profile between point i and the next, in its plane.
  const auto slope = [&](std::size_t i) {
    const double out = profile[i + 1].out - profile[i].out;
    const double up = profile[i + 1].y - profile[i].y;
    return Normalized({up, -out, 0.0});
  };
  for (std::size_t i = 0; i < last; ++i) {
    Point near = slope(i), far = near;
    if (smooth && i > 0) near = Normalized(near + slope(i - 1));
    if (smooth && i + 1 < last) far = Normalized(far + slope(i + 1));
    std::vector<int> lower, upper;
    for (int s = 0; s <= segments; ++s) {
      const double angle = 2.0 * pi * (s % segments) / segments;
      const Point out{std::sin(angle), 0.0, std::cos(angle)};
      const auto vertex = [&](const ProfilePoint &point, const Point &normal) {
        return Vertex{centre + out * point.out + Point{0.0, point.y, 0.0},
                      out * normal.x + Point{0.0, normal.y, 0.0}, point.paint};
      };
      lower.push_back(mesh.Add(vertex(profile[i], near)));
      upper.push_back(mesh.Add(vertex(profile[i + 1], far)));
    }
    for (std::size_t s = 0; s + 1 < lower.size(); ++s)
      mesh.Quad(lower[s], lower[s + 1], upper[s + 1], upper[s]);
  }
}

void Tube(Mesh &mesh, const std::vector<Point> &path, double radius, int sides, const Paint &paint) {
  Tube(mesh, path, radius, sides, [&](const Point &, const Point &) { return paint; });
}

void Tube(Mesh &mesh, const std::vector<Point> &path, double radius, int sides, const TubePaint &paint) {
  struct Ring {
    Point centre, along;
    double radius, lean; ///< lean: how far the normals turn along the path, for the rounded ends
  };
  std::vector<Ring> rings;
  const auto direction = [&](std::size_t i) {
    const Point before = i > 0 ? Normalized(path[i] - path[i - 1]) : Point{};
    const Point after = i + 1 < path.size() ? Normalized(path[i + 1] - path[i]) : Point{};
    return Normalized(before + after);
  };
  const Point start = direction(0), end = direction(path.size() - 1);
  rings.push_back({path.front() - start * (radius * 0.6), start, 0.0, -4.0});
  rings.push_back({path.front() - start * (radius * 0.4), start, radius * 0.7, -1.0});
  for (std::size_t i = 0; i < path.size(); ++i) rings.push_back({path[i], direction(i), radius, 0.0});
  rings.push_back({path.back() + end * (radius * 0.4), end, radius * 0.7, 1.0});
  rings.push_back({path.back() + end * (radius * 0.6), end, 0.0, 4.0});

  std::vector<int> previous;
  Point side =
      Normalized(std::abs(start.y) < 0.9 ? Cross({0.0, 1.0, 0.0}, start) : Cross({0.0, 0.0, 1.0}, start));
  for (const Ring &ring : rings) {
    side = Normalized(side - ring.along * Dot(side, ring.along));
    const Point third = Cross(ring.along, side);
    std::vector<int> current;
    for (int s = 0; s < sides; ++s) {
      const double angle = 2.0 * pi * s / sides;
      const Point out = side * std::cos(angle) + third * std::sin(angle);
      const Point normal = Normalized(out + ring.along * ring.lean);
      current.push_back(mesh.Add({ring.centre + out * ring.radius, normal, paint(normal, ring.along)}));
    }
    for (std::size_t s = 0; !previous.empty() && s < current.size(); ++s) {
      const std::size_t next = (s + 1) % current.size();
      mesh.Quad(previous[s], previous[next], current[next], current[s]);
    }
    previous = current;
  }
}

void Limb(Mesh &mesh, const std::vector<Joint> &joints, int sides, int capRings, const Paint &paint) {
  struct Ring {
    Joint joint;
    Point along;
    double lean; ///< of the normals along the limb
  };
  // From a joint round to the limb's end; `sign` is 1 at the far end.
  const auto cap = [&](const Joint &last, const Joint &before, double sign) {
    const Point out = Normalized(last.at - before.at);
    std::vector<Ring> rings;
    for (int i = 0; i <= capRings; ++i) {
      const double angle = pi / 2.0 * i / capRings, narrow = i == capRings ? 0.0 : std::cos(angle);
      const Point at = last.at + out * (std::min(last.side, last.up) * std::sin(angle));
      rings.push_back(
          {{at, last.side * narrow, last.up * narrow}, out * sign, sign * std::min(std::tan(angle), 100.0)});
    }
    return rings;
  };
  std::vector<Ring> rings = cap(joints[0], joints[1], -1.0);
  std::ranges::reverse(rings);
  for (std::size_t i = 1; i + 1 < joints.size(); ++i) {
    const Point before = joints[i].at - joints[i - 1].at, after = joints[i + 1].at - joints[i].at;
    const double widening = joints[i + 1].up - joints[i - 1].up;
    rings.push_back({joints[i], Normalized(Normalized(before) + Normalized(after)),
                     -widening / (Length(before) + Length(after))});
  }
  const auto farCap = cap(joints.back(), joints[joints.size() - 2], 1.0);
  rings.insert(rings.end(), farCap.begin(), farCap.end());

  std::vector<int> previous;
  Point side = Cross({0.0, 1.0, 0.0}, rings.front().along);
  for (const Ring &ring : rings) {
    side = Normalized(side - ring.along * Dot(side, ring.along));
    const Point up = Cross(ring.along, side);
    const Joint &joint = ring.joint;
    const bool tip = joint.side == 0.0;
    std::vector<int> current;
    for (int s = 0; s < sides; ++s) {
      const double angle = 2.0 * pi * s / sides, right = std::cos(angle), high = std::sin(angle);
      // The normal of an ellipse leans to its flat side.
      const Point across = Normalized(side * (right * joint.up) + up * (high * joint.side));
      current.push_back(mesh.Add({joint.at + side * (right * joint.side) + up * (high * joint.up),
                                  Normalized((tip ? Point{} : across) + ring.along * ring.lean), paint}));
    }
    for (std::size_t s = 0; !previous.empty() && s < current.size(); ++s) {
      const std::size_t next = (s + 1) % current.size();
      mesh.Quad(previous[s], previous[next], current[next], current[s]);
    }
    previous = current;
  }
}

void Outline(Mesh &mesh, const Mesh &solid, double width, const Paint &paint) {
  mesh.Append(solid, [&](const Vertex &vertex) {
    return Vertex{vertex.at + vertex.normal * width, vertex.normal * -1.0, paint};
  });
}

void Box(Mesh &mesh, const Point &low, const Point &high, const Paint &paint) {
  const auto corner = [&](int i) {
    return Point{(i & 1) != 0 ? high.x : low.x, (i & 2) != 0 ? high.y : low.y, (i & 4) != 0 ? high.z : low.z};
  };
  constexpr int Sides[6][4] = {{0, 1, 3, 2}, {4, 5, 7, 6}, {0, 2, 6, 4},
                               {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 3, 7, 6}};
  constexpr Point Normals[6] = {{0, 0, -1}, {0, 0, 1}, {-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}};
  for (int side = 0; side < 6; ++side)
    mesh.FlatQuad(corner(Sides[side][0]), corner(Sides[side][1]), corner(Sides[side][2]),
                  corner(Sides[side][3]), Normals[side], paint);
}

void Stroke(Mesh &mesh, const std::vector<Point> &path, bool closed, double width, double y,
            const Paint &paint) {
  constexpr double MitreLimit = 1.5; ///< longest mitre, in half widths
  const std::size_t count = path.size();
  const auto across = [&](std::size_t from, std::size_t to) {
    const Point along = path[to] - path[from];
    return Normalized({along.z, 0.0, -along.x});
  };
  std::vector<int> left, right;
  for (std::size_t i = 0; i < count; ++i) {
    const bool first = i == 0 && !closed, last = i + 1 == count && !closed;
    const Point before = across(first ? 0 : (i + count - 1) % count, first ? 1 : i);
    const Point after = across(last ? i - 1 : i, last ? i : (i + 1) % count);
    const Point middle = Normalized(before + after);
    const double reach = width / 2.0 * std::min(MitreLimit, 1.0 / std::max(0.1, Dot(middle, after)));
    const auto vertex = [&](double sign) {
      const Point at = path[i] + middle * (reach * sign);
      return mesh.Add({{at.x, y, at.z}, {0.0, 1.0, 0.0}, paint, middle * (-2.0 * reach * sign)});
    };
    left.push_back(vertex(1.0));
    right.push_back(vertex(-1.0));
  }
  for (std::size_t i = 0; i + 1 < count + (closed ? 1 : 0); ++i) {
    const std::size_t next = (i + 1) % count;
    mesh.Quad(left[i], left[next], right[next], right[i]);
  }
}
