#include "platform/desktop/renderer/gpu_store.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr GLenum AnisotropyParameter = 0x84FE; ///< of EXT_texture_filter_anisotropic

} // namespace

GpuStore::~GpuStore() {
  for (const auto &[texture, name] : textures_) gl_.glDeleteTextures(1, &name);
}

GpuMesh &GpuStore::Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh) {
  auto &entry = meshes_[mesh];
  if (!entry) entry = std::make_unique<GpuMesh>(gl_);
  return *entry;
}

GLuint GpuStore::Texture(const Ref<Direct3DRMTexture> &texture) {
  auto &name = textures_[texture];
  if (name != 0) return name;
  gl_.glGenTextures(1, &name);
  gl_.glBindTexture(GL_TEXTURE_2D, name);
  const Ref<const ImageData> image = texture->Image();
  gl_.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image->Width, image->Height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                   image->Pixels.data());
  gl_.glGenerateMipmap(GL_TEXTURE_2D);
  texture->GiveBack();
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                      anisotropy_ > 0.0f ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST);
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  if (anisotropy_ > 1.0f) gl_.glTexParameterf(GL_TEXTURE_2D, AnisotropyParameter, anisotropy_);
  return name;
}
