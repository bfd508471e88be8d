#pragma once

// The shading programs. What a computer without a graphics card would have to do at every fragment is done at
// the vertices, and what doesn't change from picture to picture isn't done here at all.

inline constexpr const char *SurfaceVertexShader = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 coordinate;
layout(location = 3) in vec4 fill; // its fourth part: how much of the texture shows
layout(location = 4) in vec3 key;
uniform mat4 toWorld;
uniform mat4 toClip;
uniform mat4 toShadow;
uniform vec3 camera;
uniform vec3 keyDirection;
uniform vec3 specular;
uniform float fogDensity;
out vec2 surfaceCoordinate;
out vec4 fillLight;
out vec3 keyLight;
out vec3 shadowPlace;
out float fog;
const float Sharpness = 24.0;
void main() {
  vec4 place = toWorld * vec4(position, 1.0);
  vec3 toEye = camera - place.xyz;
  float distance = length(toEye);
  fillLight = fill;
  keyLight = key;
  if (specular.r + specular.g + specular.b > 0.0) {
    vec3 between = normalize(keyDirection + toEye / distance);
    keyLight += specular * pow(max(dot(normalize(mat3(toWorld) * normal), between), 0.0), Sharpness);
  }
  surfaceCoordinate = coordinate;
  shadowPlace = (toShadow * place).xyz;
  float depth = distance * fogDensity;
  fog = 1.0 - exp(-depth * depth);
  gl_Position = toClip * place;
}
)";

// SHADOW_TAPS is defined in front of it: 0, the surface takes no shadow; 1, one look; 9, nine looks for a
// soft edge. PICTURED is 1 for a surface with a texture.
inline constexpr const char *SurfaceFragmentShader = R"(
uniform sampler2D picture;
uniform sampler2DShadow shadows;
uniform float shadowTexel;
uniform vec3 fogColor;
in vec2 surfaceCoordinate;
in vec4 fillLight;
in vec3 keyLight;
in vec3 shadowPlace;
in float fog;
out vec4 result;
void main() {
  float lit = 1.0;
#if SHADOW_TAPS == 1
  lit = texture(shadows, shadowPlace);
#elif SHADOW_TAPS == 4
  lit = 0.25 * (texture(shadows, shadowPlace + vec3(-0.7, -0.7, 0.0) * shadowTexel) +
                texture(shadows, shadowPlace + vec3(0.7, -0.7, 0.0) * shadowTexel) +
                texture(shadows, shadowPlace + vec3(-0.7, 0.7, 0.0) * shadowTexel) +
                texture(shadows, shadowPlace + vec3(0.7, 0.7, 0.0) * shadowTexel));
#endif
  vec3 light = fillLight.rgb + keyLight * lit;
#if PICTURED
  vec3 texel = texture(picture, surfaceCoordinate).rgb;
  light *= mix(vec3(1.0), texel * texel, fillLight.a); // a gamma of 2
#endif
  result = vec4(sqrt(mix(light, fogColor, fog)), 1.0);
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
