#pragma once

// Solids and flat shapes that the models are built from.

#include "mesh.h"

#include <functional>
#include <numbers>
#include <vector>

using std::numbers::pi;

/// A point of a profile that is revolved around the y axis or swept along an outline.
struct ProfilePoint {
  double out = 0.0; ///< radius, or distance from the outline
  double y = 0.0;
  Paint paint;
};

/// Revolves a profile around the y axis through `centre`. The surface faces to the right of the profile's
/// direction (out to the right, y up) and is smooth where `smooth` is set.
void Lathe(Mesh &mesh, const Point &centre, const std::vector<ProfilePoint> &profile, int segments,
           bool smooth);

/// Colour of a tube by surface normal and direction.
using TubePaint = std::function<Paint(const Point &normal, const Point &along)>;

/// A round tube along a path, with rounded ends.
void Tube(Mesh &mesh, const std::vector<Point> &path, double radius, int sides, const TubePaint &paint);
void Tube(Mesh &mesh, const std::vector<Point> &path, double radius, int sides, const Paint &paint);

/// A cross-section of a limb: an ellipse perpendicular to its path.
struct Joint {
  Point at;
  double side = 1.0; ///< half width, horizontal
  double up = 1.0;   ///< half height
};

/// A round limb along joints, with ends rounded in `capRings` steps.
void Limb(Mesh &mesh, const std::vector<Joint> &joints, int sides, int capRings, const Paint &paint);

/// A shell around a solid with its front inside, which is visible as an outline.
void Outline(Mesh &mesh, const Mesh &solid, double width, const Paint &paint);

/// A box between two corners.
void Box(Mesh &mesh, const Point &low, const Point &high, const Paint &paint);

/// A flat stroke at height `y`, facing up, through points whose y is ignored, with mitred bends.
void Stroke(Mesh &mesh, const std::vector<Point> &path, bool closed, double width, double y,
            const Paint &paint);
