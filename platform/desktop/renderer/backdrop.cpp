#include "platform/desktop/renderer/backdrop.h"

#include "platform/desktop/renderer/shaders.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

/// A ring of the dome.
struct Ring {
  float Height; ///< y of its unit directions
  float Color[3];
};

constexpr Ring Rings[] = {
    {-1.00f, {0.24f, 0.24f, 0.36f}}, {-0.60f, {0.33f, 0.31f, 0.46f}}, {-0.22f, {0.53f, 0.44f, 0.60f}},
    {-0.03f, {0.84f, 0.67f, 0.72f}}, {0.03f, {0.99f, 0.86f, 0.76f}},  {0.16f, {0.95f, 0.78f, 0.82f}},
    {0.40f, {0.80f, 0.68f, 0.89f}},  {0.70f, {0.66f, 0.58f, 0.90f}},  {1.00f, {0.58f, 0.52f, 0.88f}}};
constexpr std::uint16_t Sides = 24;
constexpr float Pi = 3.14159265f;

} // namespace

Backdrop::Backdrop(Gl &gl) : gl_(gl) {
  BuildProgram(program_, BackdropVertexShader, BackdropFragmentShader);
  std::vector<float> vertices;
  std::vector<std::uint16_t> indices;
  std::uint16_t first = 0;
  for (const Ring &ring : Rings) {
    const float radius = std::sqrt(1.0f - ring.Height * ring.Height);
    for (std::uint16_t side = 0; side < Sides; ++side) {
      const float angle = 2.0f * Pi * static_cast<float>(side) / static_cast<float>(Sides);
      vertices.insert(vertices.end(), {radius * std::cos(angle), ring.Height, radius * std::sin(angle),
                                       ring.Color[0], ring.Color[1], ring.Color[2]});
      if (&ring == Rings) continue;
      const auto next = static_cast<std::uint16_t>((side + 1) % Sides);
      for (const int index : {first - Sides + side, first - Sides + next, first + side, first + side,
                              first - Sides + next, first + next}) {
        indices.push_back(static_cast<std::uint16_t>(index));
      }
    }
    first = static_cast<std::uint16_t>(first + Sides);
  }
  indexCount_ = static_cast<GLsizei>(indices.size());
  array_.create();
  array_.bind();
  vertices_.create();
  vertices_.bind();
  vertices_.allocate(vertices.data(), static_cast<int>(vertices.size() * sizeof(float)));
  indices_.create();
  indices_.bind();
  indices_.allocate(indices.data(), static_cast<int>(indices.size() * sizeof(std::uint16_t)));
  constexpr GLsizei Stride = 6 * sizeof(float);
  gl_.glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, Stride, nullptr);
  gl_.glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, Stride,
                            reinterpret_cast<const void *>(3 * sizeof(float)));
  gl_.glEnableVertexAttribArray(0);
  gl_.glEnableVertexAttribArray(1);
}

void Backdrop::Draw(const QMatrix4x4 &toClip) {
  program_.bind();
  program_.setUniformValue("toClip", toClip);
  array_.bind();
  gl_.glDepthFunc(GL_LEQUAL);
  gl_.glDrawElements(GL_TRIANGLES, indexCount_, GL_UNSIGNED_SHORT, nullptr);
}
