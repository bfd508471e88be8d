#pragma once

// The shading programs. Light is worked out at the vertices and only the shadow at the fragments: on a
// computer without a graphics card every instruction of a fragment counts.

inline constexpr const char *SurfaceVertexShader = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 coordinate;
layout(location = 3) in vec3 color;
uniform mat4 toWorld;
uniform mat4 toClip;
uniform mat4 toShadow;
uniform vec3 camera;
uniform vec3 keyDirection;
uniform vec3 emissive;
uniform vec3 specular;
uniform float fogDensity;
out vec2 surfaceCoordinate;
out vec3 shade;       // light of sky and ground
out vec3 keyShade;    // light of the key, which a shadow takes away
out vec3 shadowPlace;
out float fog;
const vec3 KeyColor = vec3(1.20, 1.04, 0.80);
const vec3 SkyColor = vec3(0.44, 0.45, 0.62);
const vec3 GroundColor = vec3(0.26, 0.24, 0.22);
void main() {
  vec4 place = toWorld * vec4(position, 1.0);
  vec3 n = normalize(mat3(toWorld) * normal);
  vec3 base = color * color; // colours are stored with a gamma of 2
  float glow = max(max(emissive.r, emissive.g), emissive.b);
  if (glow > 0.0) base *= emissive;
  vec3 fill = mix(GroundColor, SkyColor, 0.5 + 0.5 * n.y);
  float key = max(dot(n, keyDirection), 0.0);
  vec3 toEye = normalize(camera - place.xyz);
  vec3 gloss = specular * pow(max(dot(n, normalize(keyDirection + toEye)), 0.0), 24.0);
  // What glows has half of its light of itself; the rest still shapes it.
  shade = base * (fill * (1.0 - 0.5 * glow) + vec3(0.42 * glow));
  keyShade = base * KeyColor * key * (1.0 - 0.45 * glow) + gloss;
  surfaceCoordinate = coordinate;
  shadowPlace = (toShadow * place).xyz;
  float far = length(camera - place.xyz) * fogDensity;
  fog = 1.0 - exp(-far * far);
  gl_Position = toClip * place;
}
)";

inline constexpr const char *SurfaceFragmentShader = R"(#version 330 core
uniform sampler2D picture;
uniform sampler2DShadow shadows;
uniform bool pictured;
uniform int shadowTaps; // 0: the surface takes no shadow
uniform float shadowTexel;
uniform vec3 fogColor;
in vec2 surfaceCoordinate;
in vec3 shade;
in vec3 keyShade;
in vec3 shadowPlace;
in float fog;
out vec4 result;
void main() {
  float lit = 1.0;
  if (shadowTaps == 1) {
    lit = texture(shadows, shadowPlace);
  } else if (shadowTaps > 1) {
    lit = 0.0;
    for (int y = -1; y <= 1; ++y)
      for (int x = -1; x <= 1; ++x)
        lit += texture(shadows, shadowPlace + vec3(x, y, 0.0) * shadowTexel);
    lit /= 9.0;
  }
  vec3 light = shade + keyShade * lit;
  if (pictured) {
    vec3 texel = texture(picture, surfaceCoordinate).rgb;
    light *= texel * texel;
  }
  light = mix(light, fogColor, fog);
  result = vec4(sqrt(light), 1.0);
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
