#pragma once

/// A position or a direction: left-handed, +y up, scene units.
struct Vector {
  float x = 0;
  float y = 0;
  float z = 0;
  bool operator==(const Vector &) const = default;
};

/// A half-line from its origin.
struct D3DRMRAY {
  Vector Direction;
  Vector Origin;
};
