#include "platform/desktop/renderer/frame_buffer.h"

#include "platform/desktop/renderer/renderer.h"

namespace {

void RequireComplete(QOpenGLFunctions_3_3_Core &gl) {
  if (gl.glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    throw RendererError("this OpenGL can't draw off the screen.");
  }
}

} // namespace

FrameBuffer::FrameBuffer(QOpenGLFunctions_3_3_Core &gl, QSize size, int samples)
    : gl_(gl), size_(size), samples_(samples) {
  gl_.glGenFramebuffers(1, &drawn_);
  gl_.glGenRenderbuffers(1, &color_);
  gl_.glGenRenderbuffers(1, &depth_);
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, drawn_);
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, color_);
  gl_.glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_RGBA8, size.width(), size.height());
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, depth_);
  gl_.glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_DEPTH_COMPONENT24, size.width(),
                                       size.height());
  gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_);
  gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_);
  RequireComplete(gl_);
  if (samples == 0) return;
  gl_.glGenFramebuffers(1, &resolved_);
  gl_.glGenRenderbuffers(1, &resolvedColor_);
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, resolved_);
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, resolvedColor_);
  gl_.glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, size.width(), size.height());
  gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, resolvedColor_);
  RequireComplete(gl_);
}

FrameBuffer::~FrameBuffer() {
  gl_.glDeleteFramebuffers(1, &drawn_);
  gl_.glDeleteRenderbuffers(1, &color_);
  gl_.glDeleteRenderbuffers(1, &depth_);
  if (samples_ == 0) return;
  gl_.glDeleteFramebuffers(1, &resolved_);
  gl_.glDeleteRenderbuffers(1, &resolvedColor_);
}

void FrameBuffer::Begin(float red, float green, float blue) {
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, drawn_);
  gl_.glViewport(0, 0, size_.width(), size_.height());
  gl_.glClearColor(red, green, blue, 1.0f);
  gl_.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void FrameBuffer::Read(QImage &picture, const QRect &part) {
  const int left = part.x(), top = part.y(), right = left + part.width(), bottom = top + part.height();
  if (samples_ > 0) {
    gl_.glBindFramebuffer(GL_READ_FRAMEBUFFER, drawn_);
    gl_.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolved_);
    gl_.glBlitFramebuffer(left, top, right, bottom, left, top, right, bottom, GL_COLOR_BUFFER_BIT,
                          GL_NEAREST);
  }
  gl_.glBindFramebuffer(GL_READ_FRAMEBUFFER, samples_ > 0 ? resolved_ : drawn_);
  gl_.glPixelStorei(GL_PACK_ALIGNMENT, 4);
  gl_.glPixelStorei(GL_PACK_ROW_LENGTH, size_.width());
  gl_.glReadPixels(left, top, part.width(), part.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                   picture.scanLine(top) + static_cast<std::ptrdiff_t>(left) * 4);
}
