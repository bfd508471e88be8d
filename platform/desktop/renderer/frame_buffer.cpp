#include "platform/desktop/renderer/frame_buffer.h"

namespace {

constexpr GLbitfield Everything = GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT;

QOpenGLFramebufferObjectFormat Format(int samples) {
  QOpenGLFramebufferObjectFormat format;
  format.setInternalTextureFormat(GL_RGBA8);
  format.setAttachment(QOpenGLFramebufferObject::CombinedDepthStencil);
  format.setSamples(samples);
  return format;
}

void Copy(QOpenGLFramebufferObject &to, QOpenGLFramebufferObject &from) {
  QOpenGLFramebufferObject::blitFramebuffer(&to, &from, Everything);
}

void Require(const QOpenGLFramebufferObject &buffer) {
  if (!buffer.isValid()) throw RendererError("this OpenGL can't draw off-screen.");
}

} // namespace

FrameBuffer::FrameBuffer(Gl &gl, QSize size, int samples) : gl_(gl), drawn_(size, Format(samples)) {
  Require(drawn_);
  if (samples > 0) {
    Require(resolved_.emplace(size));
  } else {
    smoothing_.emplace(size);
  }
}

void FrameBuffer::DrawInto() {
  drawn_.bind();
  gl_.glViewport(0, 0, Size().width(), Size().height());
}

void FrameBuffer::Begin() {
  DrawInto();
  gl_.glClearColor(0.60f, 0.44f, 0.53f, 1.0f); // dusk, blue first; seen through cracks at most
  gl_.glClear(Everything);
}

void FrameBuffer::Keep() {
  if (!kept_) Require(kept_.emplace(Size(), drawn_.format()));
  Copy(*kept_, drawn_);
  DrawInto();
}

void FrameBuffer::BeginOnKept() {
  Copy(drawn_, *kept_);
  DrawInto();
}

bool FrameBuffer::Read(QImage &image) {
  if (resolved_) QOpenGLFramebufferObject::blitFramebuffer(&*resolved_, &drawn_);
  (resolved_ ? *resolved_ : drawn_).bind();
  gl_.glReadPixels(0, 0, Size().width(), Size().height(), GL_RGBA, GL_UNSIGNED_INT_8_8_8_8_REV,
                   smoothing_ ? smoothing_->Drawn().bits() : image.bits());
  return !smoothing_ || smoothing_->Update(image);
}
