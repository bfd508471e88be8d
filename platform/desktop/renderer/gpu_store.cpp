#include "platform/desktop/renderer/gpu_store.h"

#include <QImage>

#include <algorithm>

namespace {

// In a view up to this height a distant texture never covers more pixels than this.
constexpr int SmallView = 400; ///< pixels
constexpr QSize LargestDistant(512, 512);

} // namespace

void GpuStore::SetView(int height) {
  const bool small = height <= SmallView && anisotropy_ <= 0.0f;
  if (small != smallView_) textures_.clear();
  smallView_ = small;
}

QOpenGLTexture &GpuStore::Texture(const Ref<Direct3DRMTexture> &texture, bool distant) {
  auto &entry = textures_[texture];
  if (entry) return *entry;
  const Ref<const ImageData> data = texture->Image();
  QImage image(data->Pixels.data(), data->Width, data->Height, QImage::Format_RGBA8888);
  if (distant && smallView_)
    image =
        image.scaled(image.size().boundedTo(LargestDistant), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  entry = std::make_unique<QOpenGLTexture>(image);
  texture->ReleaseImage();
  entry->setMinMagFilters(anisotropy_ > 0.0f ? QOpenGLTexture::LinearMipMapLinear
                                             : QOpenGLTexture::LinearMipMapNearest,
                          QOpenGLTexture::Linear);
  entry->setWrapMode(QOpenGLTexture::Repeat);
  if (anisotropy_ > 1.0f) entry->setMaximumAnisotropy(anisotropy_);
  return *entry;
}
