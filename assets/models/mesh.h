#pragma once

// A triangle mesh in the making, and the file that it becomes. Left-handed axes, y up, lengths in whatever
// unit the model is thought in; the writer divides by the factors that the game multiplies by.

#include <filesystem>
#include <string>
#include <vector>

struct Point {
  double x = 0.0, y = 0.0, z = 0.0;
};

Point operator+(const Point &a, const Point &b);
Point operator-(const Point &a, const Point &b);
Point operator*(const Point &a, double factor);
double Dot(const Point &a, const Point &b);
Point Cross(const Point &a, const Point &b);
double Length(const Point &a);
Point Normalized(const Point &a); ///< (0, 1, 0) for a vector too short to have a direction
Point Mix(const Point &a, const Point &b, double share);

/// Colour of a vertex, parts from 0 to 1, above 1 for what shines. It tints what the game lays over the mesh,
/// be it a texture or a material.
struct Paint {
  double r = 1.0, g = 1.0, b = 1.0;
  double texture = 1.0; ///< how much of the texture shows: 1 all of it, 0 the plain paint
};

Paint operator*(const Paint &paint, double brightness); ///< the share of texture stays
Paint Mix(const Paint &a, const Paint &b, double share);

struct Vertex {
  Point at;
  Point normal;
  Paint paint;
};

/// Where a model comes to stand: scene = file * scale + offset, axis by axis.
struct Placement {
  Point scale{1.0, 1.0, 1.0};
  Point offset;
};

class Mesh {
public:
  int Add(const Vertex &vertex); ///< the vertex's number
  /// A face between three vertices, turned so that its front lies on the side of their normals. Faces without
  /// area are dropped.
  void Triangle(int a, int b, int c);
  void Quad(int a, int b, int c, int d); ///< corners in order round the face
  /// A quad with corners of its own.
  void Quad(const Vertex &a, const Vertex &b, const Vertex &c, const Vertex &d);
  /// A face of its own with one normal; the front lies on the side of `normal`.
  void FlatQuad(const Point &a, const Point &b, const Point &c, const Point &d, const Point &normal,
                const Paint &paint);
  void FlatTriangle(const Point &a, const Point &b, const Point &c, const Point &normal, const Paint &paint);

  /// Adds all of another mesh, each vertex as `place` makes it.
  template <typename Place> void Append(const Mesh &other, Place place) {
    const int first = static_cast<int>(vertices_.size());
    for (const Vertex &vertex : other.vertices_) Add(place(vertex));
    for (const Face &face : other.faces_) Triangle(first + face.a, first + face.b, first + face.c);
  }

  std::size_t Faces() const { return faces_.size(); }

  /// Writes the mesh so that it has its places of now once the game has scaled and shifted it by `placement`.
  /// @throws std::runtime_error  if the file can't be written
  void Write(const std::filesystem::path &path, const std::string &name, const Placement &placement) const;

private:
  struct Face {
    int a, b, c;
  };
  std::vector<Vertex> vertices_;
  std::vector<Face> faces_;
};
