#include "platform/desktop/renderer/gpu_store.h"

#include <algorithm>

namespace {

constexpr GLenum AnisotropyParameter = 0x84FE; ///< of EXT_texture_filter_anisotropic

// In a view up to this height a distant texture never covers more pixels than this.
constexpr int SmallView = 400;      ///< pixels
constexpr int LargestDistant = 512; ///< pixels, width and height

/// Half as wide and high: each pixel is the mean of four.
ImageData Halved(const ImageData &image) {
  ImageData half{image.Width / 2, image.Height / 2, {}};
  half.Pixels.reserve(image.Pixels.size() / 4);
  const auto stride = static_cast<std::size_t>(image.Width) * 4;
  for (std::size_t y = 0; y < static_cast<std::size_t>(half.Height); ++y) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(half.Width); ++x) {
      for (std::size_t channel = 0; channel < 4; ++channel) {
        const std::uint8_t *four = &image.Pixels[2 * y * stride + 8 * x + channel];
        half.Pixels.push_back(
            static_cast<std::uint8_t>((four[0] + four[4] + four[stride] + four[stride + 4] + 2) / 4));
      }
    }
  }
  return half;
}

} // namespace

GpuStore::~GpuStore() { DeleteTextures(); }

void GpuStore::DeleteTextures() {
  for (const auto &[texture, name] : textures_) gl_.glDeleteTextures(1, &name);
  textures_.clear();
}

void GpuStore::SetView(int height) {
  const bool small = height <= SmallView && anisotropy_ <= 0.0f;
  if (small != smallView_) DeleteTextures();
  smallView_ = small;
}

GpuMesh &GpuStore::Mesh(const Ref<Direct3DRMMeshBuilder3> &mesh) {
  auto &entry = meshes_[mesh];
  if (!entry) entry = std::make_unique<GpuMesh>(gl_);
  return *entry;
}

GLuint GpuStore::Texture(const Ref<Direct3DRMTexture> &texture, bool distant) {
  auto &name = textures_[texture];
  if (name != 0) return name;
  gl_.glGenTextures(1, &name);
  gl_.glBindTexture(GL_TEXTURE_2D, name);
  Ref<const ImageData> image = texture->Image();
  while (distant && smallView_ && std::min(image->Width, image->Height) > LargestDistant)
    image = std::make_shared<const ImageData>(Halved(*image));
  gl_.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image->Width, image->Height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                   image->Pixels.data());
  gl_.glGenerateMipmap(GL_TEXTURE_2D);
  texture->ReleaseImage();
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                      anisotropy_ > 0.0f ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST);
  gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  if (anisotropy_ > 1.0f) gl_.glTexParameterf(GL_TEXTURE_2D, AnisotropyParameter, anisotropy_);
  return name;
}
