#include "mesh.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace {

constexpr double SmallestArea = 1e-7; ///< of a face worth writing, square units

/// A number with a decimal point, which readers of mesh files require.
std::string Number(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.5f", value == 0.0 ? 0.0 : value);
  std::string number = text;
  while (number.back() == '0' && number[number.size() - 2] != '.') number.pop_back();
  return number == "-0.0" ? "0.0" : number;
}

std::string Triple(const Point &a) { return Number(a.x) + ";" + Number(a.y) + ";" + Number(a.z) + ";"; }

/// An invisibly small change of a normal that depends on the colour. Readers merge vertices with equal
/// positions and normals regardless of their colours, which would blur the edge between two colours.
Point Nudge(const Paint &paint) {
  constexpr double Size = 4e-4;
  const auto part = [&](double a, double b, double c, double d) {
    const double mixed = paint.r * a + paint.g * b + paint.b * c + paint.texture * d;
    return Size * (mixed - std::floor(mixed) - 0.5);
  };
  return {part(37.1, 11.3, 53.9, 7.7), part(13.7, 61.1, 5.3, 29.9), part(71.3, 17.9, 31.7, 43.3)};
}

} // namespace

Point operator+(const Point &a, const Point &b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Point operator-(const Point &a, const Point &b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Point operator*(const Point &a, double factor) { return {a.x * factor, a.y * factor, a.z * factor}; }
double Dot(const Point &a, const Point &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Point Cross(const Point &a, const Point &b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Length(const Point &a) { return std::sqrt(Dot(a, a)); }
Point Normalized(const Point &a) {
  const double length = Length(a);
  return length < 1e-12 ? Point{0.0, 1.0, 0.0} : a * (1.0 / length);
}
Point Mix(const Point &a, const Point &b, double share) { return a * (1.0 - share) + b * share; }

Paint operator*(const Paint &paint, double brightness) {
  return {paint.r * brightness, paint.g * brightness, paint.b * brightness, paint.texture};
}
Paint Mix(const Paint &a, const Paint &b, double share) {
  const double rest = 1.0 - share;
  return {a.r * rest + b.r * share, a.g * rest + b.g * share, a.b * rest + b.b * share,
          a.texture * rest + b.texture * share};
}

int Mesh::Add(const Vertex &vertex) {
  vertices_.push_back(vertex);
  return static_cast<int>(vertices_.size()) - 1;
}

void Mesh::Triangle(int a, int b, int c) {
  const auto &first = vertices_[static_cast<std::size_t>(a)];
  const auto &second = vertices_[static_cast<std::size_t>(b)];
  const auto &third = vertices_[static_cast<std::size_t>(c)];
  const Point across = Cross(second.at - first.at, third.at - first.at);
  if (Length(across) < 2.0 * SmallestArea) return;
  if (Dot(across, first.normal + second.normal + third.normal) < 0.0)
    faces_.push_back({a, c, b});
  else
    faces_.push_back({a, b, c});
}

void Mesh::Quad(int a, int b, int c, int d) {
  Triangle(a, b, c);
  Triangle(a, c, d);
}

void Mesh::Quad(const Vertex &a, const Vertex &b, const Vertex &c, const Vertex &d) {
  const int first = Add(a), second = Add(b), third = Add(c), fourth = Add(d);
  Quad(first, second, third, fourth);
}

void Mesh::FlatQuad(const Point &a, const Point &b, const Point &c, const Point &d, const Point &normal,
                    const Paint &paint) {
  Quad(Vertex{a, normal, paint}, Vertex{b, normal, paint}, Vertex{c, normal, paint},
       Vertex{d, normal, paint});
}

void Mesh::StrokeQuad(const Point &a, const Point &b, const Point &c, const Point &d, const Point &normal,
                      const Paint &paint) {
  const bool alongBC = Length(b - a) < Length(d - a);
  const auto corner = [&](const Point &at, const Point &ifAlongBC, const Point &ifAlongAB) {
    return Vertex{at, normal, paint, (alongBC ? ifAlongBC : ifAlongAB) - at};
  };
  Quad(corner(a, b, d), corner(b, a, c), corner(c, d, b), corner(d, c, a));
}

void Mesh::FlatTriangle(const Point &a, const Point &b, const Point &c, const Point &normal,
                        const Paint &paint) {
  const int first = Add({a, normal, paint}), second = Add({b, normal, paint}),
            third = Add({c, normal, paint});
  Triangle(first, second, third);
}

void Mesh::Write(const std::filesystem::path &path, const std::string &name,
                 const Placement &placement) const {
  std::ofstream file(path, std::ios::binary);
  const auto ending = [](std::size_t index, std::size_t count) { return index + 1 < count ? ",\n" : ";\n"; };
  const auto writeFaces = [&] {
    file << faces_.size() << ";\n";
    for (std::size_t i = 0; i < faces_.size(); ++i)
      file << "3;" << faces_[i].a << "," << faces_[i].b << "," << faces_[i].c << ";"
           << ending(i, faces_.size());
  };

  file << "xof 0303txt 0032\n\nMesh " << name << " {\n" << vertices_.size() << ";\n";
  for (std::size_t i = 0; i < vertices_.size(); ++i) {
    const Point moved = vertices_[i].at - placement.offset;
    file << Triple({moved.x / placement.scale.x, moved.y / placement.scale.y, moved.z / placement.scale.z})
         << ending(i, vertices_.size());
  }
  writeFaces();
  file << "MeshNormals {\n" << vertices_.size() << ";\n";
  for (std::size_t i = 0; i < vertices_.size(); ++i) {
    // Normals scale by the inverse.
    const Point normal = Normalized(vertices_[i].normal) + Nudge(vertices_[i].paint);
    file << Triple(Normalized(
                {normal.x * placement.scale.x, normal.y * placement.scale.y, normal.z * placement.scale.z}))
         << ending(i, vertices_.size());
  }
  writeFaces();
  file << "}\n";
  if (std::ranges::any_of(vertices_,
                          [](const Vertex &vertex) { return Dot(vertex.across, vertex.across) > 0.0; })) {
    file << "MeshTextureCoords {\n" << vertices_.size() << ";\n";
    for (std::size_t i = 0; i < vertices_.size(); ++i)
      file << Number(vertices_[i].across.x) << ";" << Number(vertices_[i].across.z) << ";"
           << ending(i, vertices_.size());
    file << "}\n";
  }
  file << "MeshVertexColors {\n" << vertices_.size() << ";\n";
  for (std::size_t i = 0; i < vertices_.size(); ++i) {
    const Paint &paint = vertices_[i].paint;
    file << i << ";" << Triple({paint.r, paint.g, paint.b}) << Number(paint.texture) << ";"
         << ending(i, vertices_.size());
  }
  file << "}\n}\n";
  file.flush();
  if (!file) throw std::runtime_error(path.string() + ": can't write the model");
}
