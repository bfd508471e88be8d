#pragma once

// A builder of triangle meshes, and the writer of mesh files. Left-handed axes, y up, any unit of length; the
// writer divides by the factors that the game multiplies by.

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
Point Normalized(const Point &a); ///< (0, 1, 0) for a vector of almost zero length
Point Mix(const Point &a, const Point &b, double share);

/// Colour of a vertex, channels from 0 to 1, above 1 for highlights. It is multiplied with the texture or
/// material.
struct Paint {
  double r = 1.0, g = 1.0, b = 1.0;
  double texture = 1.0; ///< weight of the texture: 1 full texture, 0 plain colour
};

Paint operator*(const Paint &paint, double brightness); ///< keeps the weight of the texture
Paint Mix(const Paint &a, const Paint &b, double share);

struct Vertex {
  Point at;
  Point normal;
  Paint paint;
  Point across{}; ///< to the other side of the stroke of paint that it belongs to, horizontal; 0 for none
};

/// Placement of a model by the game: scene = file * scale + offset, per axis.
struct Placement {
  Point scale{1.0, 1.0, 1.0};
  Point offset;
};

class Mesh {
public:
  int Add(const Vertex &vertex); ///< returns the index of the vertex
  /// A face of three vertices, oriented by their normals. Degenerate faces are dropped.
  void Triangle(int a, int b, int c);
  void Quad(int a, int b, int c, int d); ///< corners in order around the face
  /// A quad with its own vertices.
  void Quad(const Vertex &a, const Vertex &b, const Vertex &c, const Vertex &d);
  /// A flat face with its own vertices, oriented by `normal`.
  void FlatQuad(const Point &a, const Point &b, const Point &c, const Point &d, const Point &normal,
                const Paint &paint);
  /// The same for a stroke of paint.
  void StrokeQuad(const Point &a, const Point &b, const Point &c, const Point &d, const Point &normal,
                  const Paint &paint);
  void FlatTriangle(const Point &a, const Point &b, const Point &c, const Point &normal, const Paint &paint);

  /// Adds another mesh with every vertex transformed by `place`.
  template <typename Place> void Append(const Mesh &other, Place place) {
    const int first = static_cast<int>(vertices_.size());
    for (const Vertex &vertex : other.vertices_) Add(place(vertex));
    for (const Face &face : other.faces_) Triangle(first + face.a, first + face.b, first + face.c);
  }

  /// Writes the mesh such that the game's `placement` restores the current positions. If it has strokes, the
  /// texture coordinates of a vertex are x and z of its vector across.
  /// @throws std::runtime_error  if the file can't be written
  void Write(const std::filesystem::path &path, const std::string &name, const Placement &placement) const;

private:
  struct Face {
    int a, b, c;
  };
  std::vector<Vertex> vertices_;
  std::vector<Face> faces_;
};
