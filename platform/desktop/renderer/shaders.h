#pragma once

// The shaders. Software OpenGL must be quick too, so most work is done per vertex, and what doesn't change
// from frame to frame is computed on the processor.
//
// Colours keep their stored gamma of 2. Light times texture needs no conversion: the root of a product is the
// product of the roots. Fragments have blue first, like the `QImage` that the frame is read into.

#include <QOpenGLShaderProgram>

#include <string>

/// Compiles and links a program.
/// @param definitions  lines before both shaders
/// @throws RendererError  with what the driver says
void BuildProgram(QOpenGLShaderProgram &program, const std::string &definitions, const char *vertex,
                  const char *fragment);

// PAINT is defined for strokes on the ground. A stroke thinner than a pixel would break up, so it is drawn a
// pixel thick, with a coverage equal to its real thickness. The texture coordinates are x and z of the vector
// from a vertex to the other side of its stroke.
inline constexpr const char *SurfaceVertexShader = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 coordinate;
layout(location = 3) in vec4 light; // a: weight of the texture
out vec3 shine;
out float fog;
#ifdef TEXTURED
out vec2 surfaceCoordinate;
out float textureShare;
#endif
#ifdef PAINT
uniform vec2 halfFrame; // pixels
out float coverage;
#endif
uniform mat4 toWorld;
uniform mat4 toClip;
uniform vec3 camera;
uniform vec3 keyDirection;
uniform vec3 specular;
const float Sharpness = 24.0;
const float FogDistance = 900.0; // scene units at which a third of a colour is left
void main() {
  vec4 place = toWorld * vec4(position, 1.0);
  vec3 toEye = camera - place.xyz;
  float distance = length(toEye);
  vec3 between = normalize(keyDirection + toEye / distance);
  float mirrored = pow(max(dot(normalize(mat3(toWorld) * normal), between), 0.0), Sharpness);
  shine = sqrt(light.rgb * light.rgb + specular * mirrored);
#ifdef TEXTURED
  surfaceCoordinate = coordinate;
  textureShare = light.a;
#endif
  float depth = distance * (1.0 / FogDistance);
  fog = 1.0 - exp(-depth * depth);
  gl_Position = toClip * place;
#ifdef PAINT
  vec3 way = mat3(toWorld) * vec3(coordinate.x, 0.0, coordinate.y);
  vec4 otherSide = toClip * (place + vec4(way, 0.0));
  vec4 ahead = toClip * (place + vec4(cross(normalize(mat3(toWorld) * normal), way), 0.0));
  coverage = 1.0;
  if (way != vec3(0.0) && min(gl_Position.w, min(otherSide.w, ahead.w)) > 1.0) {
    vec2 here = gl_Position.xy / gl_Position.w * halfFrame;
    vec2 thick = otherSide.xy / otherSide.w * halfFrame - here;
    vec2 along = normalize(ahead.xy / ahead.w * halfFrame - here);
    coverage = clamp(abs(thick.x * along.y - thick.y * along.x), 0.05, 1.0);
    // Widened along the ground, so that it stays above what lies under it.
    gl_Position -= toClip * vec4(way, 0.0) * (0.5 / coverage - 0.5);
  }
#endif
}
)";

// TEXTURED is defined for faces with a texture. The colour of the fog is a constant, because software OpenGL
// reads a uniform anew for every pixel.
inline constexpr const char *SurfaceFragmentShader = R"(
uniform sampler2D surfaceTexture;
in vec3 shine;
in float fog;
#ifdef TEXTURED
in vec2 surfaceCoordinate;
in float textureShare;
#endif
#ifdef PAINT
in float coverage;
#else
const float coverage = 1.0;
#endif
out vec4 result;
const vec3 FogColor = vec3(0.84, 0.71, 0.81);
void main() {
  vec3 light = shine;
#ifdef TEXTURED
  light *= mix(vec3(1.0), texture(surfaceTexture, surfaceCoordinate).rgb, textureShare);
#endif
  result = vec4(mix(light, FogColor, fog).bgr, coverage);
}
)";

// A mesh in one dark colour: for outlines, and for the shadow map, which has depths only.
inline constexpr const char *SilhouetteVertexShader = R"(
layout(location = 0) in vec3 position;
uniform mat4 toClip; // from the mesh
void main() { gl_Position = toClip * vec4(position, 1.0); }
)";

inline constexpr const char *SilhouetteFragmentShader = R"(
out vec4 result;
void main() { result = vec4(0.22, 0.13, 0.16, 1.0); }
)";

// Multiplies the colours in a part of the ground by the shadow's factor.
inline constexpr const char *ShadeVertexShader = R"(
uniform vec3 low, high; // corners of the part
uniform mat4 toClip;
uniform mat4 toShadow;
out vec3 shadowPlace;
void main() {
  vec4 place = vec4(mix(low, high, vec3(gl_VertexID >> 1, 1.0, gl_VertexID & 1)), 1.0);
  shadowPlace = (toShadow * place).xyz;
  gl_Position = toClip * place;
}
)";

// TAPS is the number of samples for a shadow's halo.
inline constexpr const char *ShadeFragmentShader = R"(
uniform sampler2DShadow shadows;
uniform float softness; // radius of the penumbra, as a share of the map
uniform float halo;     // radius of the ambient occlusion, as a share of the map
uniform vec3 shade;     // in the core
in vec3 shadowPlace;
out vec4 result;
float LitAt(vec2 offset) { return texture(shadows, shadowPlace + vec3(offset, 0.0)); }
void main() {
#if TAPS > 4
  float core = 0.25 * (LitAt(softness * vec2(0.6, 0.3)) + LitAt(softness * vec2(-0.3, 0.6)) +
                       LitAt(softness * vec2(-0.6, -0.3)) + LitAt(softness * vec2(0.3, -0.6)));
#else
  float core = LitAt(vec2(0.0));
#endif
  // Samples on a spiral, at steps of the golden angle.
  const mat2 turn = mat2(-0.737369, 0.675490, -0.675490, -0.737369);
  vec2 way = vec2(halo, 0.0);
  float around = 0.0;
  for (int i = 0; i < TAPS; ++i) {
    way = turn * way;
    around += LitAt(way * sqrt((float(i) + 0.5) / float(TAPS)));
  }
  around /= float(TAPS);
  result = vec4(mix(shade, vec3(1.0), core * around * around).bgr, 1.0);
}
)";

// The background, one triangle over the whole frame at the far plane, drawn last.
inline constexpr const char *BackdropVertexShader = R"(
uniform mat4 toScene; // from clip space
uniform vec3 camera;
out vec3 direction;
void main() {
  vec4 corner = vec4(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0, 1.0, 1.0);
  vec4 far = toScene * corner;
  direction = far.xyz / far.w - camera;
  gl_Position = corner;
}
)";

inline constexpr const char *BackdropFragmentShader = R"(
in vec3 direction;
out vec4 result;
void main() {
  float height = normalize(direction).y;
  vec3 glow = mix(vec3(0.38, 0.34, 0.51), vec3(0.98, 0.84, 0.76), smoothstep(-0.35, 0.03, height));
  glow = mix(glow, vec3(0.94, 0.76, 0.84), smoothstep(0.03, 0.20, height));
  glow = mix(glow, vec3(0.60, 0.53, 0.89), smoothstep(0.20, 0.90, height));
  result = vec4(glow.bgr, 1.0);
}
)";
