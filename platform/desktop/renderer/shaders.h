#pragma once

// The shading programs. What a computer without a graphics card would have to do at every fragment is done at
// the vertices, and what doesn't change from picture to picture isn't done here at all.
//
// Colours are worked with as they are stored, that is with a gamma of 2. Light times texture needs no
// conversion then: the root of a product is the product of the roots.

#include <QOpenGLShaderProgram>

#include <string>

/// Compiles and links a program.
/// @throws RendererError  with what the driver says
void BuildProgram(QOpenGLShaderProgram &program, const std::string &vertex, const std::string &fragment);

// PAINT is defined in front of both: 1 for strokes on the ground. One that is thinner than a pixel is drawn a
// pixel thick, and covers as much of it as it is thick: its pixels would come and go along its way otherwise.
inline constexpr const char *SurfaceVertexShader = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 coordinate;
layout(location = 3) in vec4 shade; // in the shadow; its fourth part: how much of the texture shows
layout(location = 4) in vec3 lit;   // in the key light
#if PAINT
layout(location = 5) in vec3 across; // to the other side of the stroke
uniform vec2 halfPicture;            // pixels
out float coverage;
#endif
uniform mat4 toWorld;
uniform mat4 toClip;
uniform mat4 toShadow;
uniform vec3 camera;
uniform vec3 keyDirection;
uniform vec3 specular;
uniform float fogDensity;
out vec2 surfaceCoordinate;
out vec4 shadeLight;
out vec3 litLight;
out vec3 shadowPlace;
out float fog;
// A surface that takes shadows is drawn by two programs, each where the other has left room.
invariant gl_Position;
const float Sharpness = 24.0;
void main() {
  vec4 place = toWorld * vec4(position, 1.0);
  vec3 toEye = camera - place.xyz;
  float distance = length(toEye);
  shadeLight = shade;
  litLight = lit;
  if (specular.r + specular.g + specular.b > 0.0) {
    vec3 between = normalize(keyDirection + toEye / distance);
    float mirrored = pow(max(dot(normalize(mat3(toWorld) * normal), between), 0.0), Sharpness);
    litLight = sqrt(lit * lit + specular * mirrored);
  }
  surfaceCoordinate = coordinate;
  shadowPlace = (toShadow * place).xyz;
  float depth = distance * fogDensity;
  fog = 1.0 - exp(-depth * depth);
  gl_Position = toClip * place;
#if PAINT
  vec3 way = mat3(toWorld) * across;
  vec4 otherSide = toClip * (place + vec4(way, 0.0));
  vec4 ahead = toClip * (place + vec4(cross(normalize(mat3(toWorld) * normal), way), 0.0));
  coverage = 1.0;
  if (min(gl_Position.w, min(otherSide.w, ahead.w)) > 1.0) {
    vec2 here = gl_Position.xy / gl_Position.w * halfPicture;
    vec2 thick = otherSide.xy / otherSide.w * halfPicture - here;
    vec2 along = normalize(ahead.xy / ahead.w * halfPicture - here);
    coverage = clamp(abs(thick.x * along.y - thick.y * along.x), 0.05, 1.0);
    // Widened on the ground, so that it stays before what lies under it.
    gl_Position -= toClip * vec4(way, 0.0) * (0.5 / coverage - 0.5);
  }
#endif
}
)";

// SHADOW_TAPS is defined in front of it, the number of looks for the halo of a shadow; 0, the surface takes
// none. PICTURED is 1 for a surface with a texture.
inline constexpr const char *SurfaceFragmentShader = R"(
uniform sampler2D picture;
uniform sampler2DShadow shadows;
uniform float softness; // radius of a shadow's soft edge, in parts of the map
uniform float halo;     // radius up to which a thing keeps light from the ground around it
uniform vec3 fogColor;
in vec2 surfaceCoordinate;
in vec4 shadeLight;
in vec3 litLight;
in vec3 shadowPlace;
in float fog;
#if PAINT
in float coverage;
#endif
out vec4 result;
#if SHADOW_TAPS > 0
float Look(vec2 away) { return texture(shadows, shadowPlace + vec3(away, 0.0)); }
float Lit() {
#if SHADOW_TAPS > 4
  float core = 0.25 * (Look(softness * vec2(0.6, 0.3)) + Look(softness * vec2(-0.3, 0.6)) +
                       Look(softness * vec2(-0.6, -0.3)) + Look(softness * vec2(0.3, -0.6)));
#else
  float core = Look(vec2(0.0));
#endif
  // Looks on a spiral, each at the golden angle from the last.
  const mat2 turn = mat2(-0.737369, 0.675490, -0.675490, -0.737369);
  vec2 way = vec2(halo, 0.0);
  float around = 0.0;
  for (int i = 0; i < SHADOW_TAPS; ++i) {
    way = turn * way;
    around += Look(way * sqrt((float(i) + 0.5) / float(SHADOW_TAPS)));
  }
  around /= float(SHADOW_TAPS);
  return core * around * around;
}
#endif
void main() {
  vec3 light = litLight;
#if SHADOW_TAPS > 0
  light = mix(shadeLight.rgb, litLight, Lit());
#endif
#if PICTURED
  light *= mix(vec3(1.0), texture(picture, surfaceCoordinate).rgb, shadeLight.a);
#endif
#if PAINT
  result = vec4(mix(light, fogColor, fog), coverage);
#else
  result = vec4(mix(light, fogColor, fog), 1.0);
#endif
}
)";

inline constexpr const char *ShadowVertexShader = R"(#version 330 core
layout(location = 0) in vec3 position;
uniform mat4 toWorld;
uniform mat4 toShadow;
void main() { gl_Position = toShadow * toWorld * vec4(position, 1.0); }
)";

inline constexpr const char *ShadowFragmentShader = R"(#version 330 core
void main() {}
)";

// What shows where nothing stands: it is drawn last and lies behind everything.
inline constexpr const char *BackdropVertexShader = R"(#version 330 core
layout(location = 0) in vec3 direction;
layout(location = 1) in vec3 color;
uniform mat4 toClip; // without the camera's place
out vec3 glow;
void main() {
  glow = color;
  gl_Position = (toClip * vec4(direction, 0.0)).xyww;
}
)";

inline constexpr const char *BackdropFragmentShader = R"(#version 330 core
in vec3 glow;
out vec4 result;
void main() { result = vec4(glow, 1.0); }
)";

// One triangle over the whole picture.
inline constexpr const char *SmoothingVertexShader = R"(#version 330 core
void main() { gl_Position = vec4(vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0, 0.0, 1.0); }
)";

// The direction of an edge comes from the brightness of the four diagonal neighbours. Two looks along it,
// close by, and two more further out: those count only where they stay between the colours on both sides of
// the edge.
inline constexpr const char *SmoothingFragmentShader = R"(#version 330 core
uniform sampler2D drawn;
out vec4 result;
const float LeastContrast = 0.06;    // below it there is no edge ...
const float RelativeContrast = 0.20; // ... nor below this part of the brightest neighbour
const float Span = 4.0;              // pixels along the edge from the first look to the last
const float Strength = 0.7;          // what small lettering stands
vec3 At(ivec2 place) {
  return texelFetch(drawn, clamp(place, ivec2(0), textureSize(drawn, 0) - 1), 0).rgb;
}
float Brightness(vec3 color) { return dot(color, vec3(0.30, 0.59, 0.11)); }
void main() {
  ivec2 place = ivec2(gl_FragCoord.xy);
  vec3 middle = At(place);
  float here = Brightness(middle);
  float a = Brightness(At(place + ivec2(-1, -1))), b = Brightness(At(place + ivec2(1, -1)));
  float c = Brightness(At(place + ivec2(-1, 1))), d = Brightness(At(place + ivec2(1, 1)));
  float least = min(here, min(min(a, b), min(c, d)));
  float most = max(here, max(max(a, b), max(c, d)));
  result = vec4(middle, 1.0);
  if (most - least < max(LeastContrast, RelativeContrast * most)) return;
  vec2 along = vec2((c + d) - (a + b), (a + c) - (b + d));
  float faint = max((a + b + c + d) * 0.03, 0.008); // keeps faint edges from reaching far
  along = clamp(along / (min(abs(along.x), abs(along.y)) + faint), -Span, Span);
  vec2 pixel = 1.0 / vec2(textureSize(drawn, 0));
  vec2 center = gl_FragCoord.xy * pixel;
  along *= pixel;
  vec3 close = 0.5 * (texture(drawn, center - along / 6.0).rgb + texture(drawn, center + along / 6.0).rgb);
  vec3 wide = 0.5 * close +
              0.25 * (texture(drawn, center - along / 2.0).rgb + texture(drawn, center + along / 2.0).rgb);
  float between = Brightness(wide);
  result.rgb = mix(middle, between < least || between > most ? close : wide, Strength);
}
)";
