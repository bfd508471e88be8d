#include "platform/desktop/renderer/gpu_store.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr GLenum AnisotropyParameter = 0x84FE; ///< of EXT_texture_filter_anisotropic
constexpr std::size_t Channels = 4;

/// The same image at half the size. Brightness is averaged, not what is stored, so that far crowds and
/// far grass are as bright as near ones.
ImageData Halved(const ImageData &image) {
  ImageData half{std::max(image.Width / 2, 1), std::max(image.Height / 2, 1), {}};
  half.Pixels.reserve(static_cast<std::size_t>(half.Width) * static_cast<std::size_t>(half.Height) *
                      Channels);
  const auto at = [&](int x, int y) {
    return &image.Pixels[(static_cast<std::size_t>(std::min(y, image.Height - 1)) *
                              static_cast<std::size_t>(image.Width) +
                          static_cast<std::size_t>(std::min(x, image.Width - 1))) *
                         Channels];
  };
  for (int y = 0; y < half.Height; ++y) {
    for (int x = 0; x < half.Width; ++x) {
      const std::uint8_t *four[] = {at(2 * x, 2 * y), at(2 * x + 1, 2 * y), at(2 * x, 2 * y + 1),
                                    at(2 * x + 1, 2 * y + 1)};
      for (std::size_t part = 0; part < Channels; ++part) {
        float sum = 0;
        for (const std::uint8_t *pixel : four) {
          sum += static_cast<float>(pixel[part]) * static_cast<float>(pixel[part]);
        }
        half.Pixels.push_back(static_cast<std::uint8_t>(std::lround(std::sqrt(sum / 4.0f))));
      }
    }
  }
  return half;
}

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
  const auto upload = [&](GLint level, const ImageData &image) {
    gl_.glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, image.Width, image.Height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     image.Pixels.data());
  };
  const Ref<const ImageData> whole = texture->Image();
  upload(0, *whole);
  ImageData image;
  const ImageData *larger = whole.get();
  for (GLint level = 1; larger->Width > 1 || larger->Height > 1; ++level) {
    image = Halved(*larger);
    larger = &image;
    upload(level, image);
  }
  texture->GiveBack();
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                      anisotropy_ > 0.0f ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST);
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  if (anisotropy_ > 1.0f) gl_.glTexParameterf(GL_TEXTURE_2D, AnisotropyParameter, anisotropy_);
  return name;
}
