#include "platform/desktop/renderer/frame_buffer.h"

#include "platform/desktop/renderer/renderer.h"

namespace {

void RequireComplete(QOpenGLFunctions_3_3_Core &gl) {
  if (gl.glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    throw RendererError("this OpenGL can't draw off the screen.");
  }
}

} // namespace

FrameBuffer::FrameBuffer(Gl &gl, QSize size, int samples) : gl_(gl), size_(size) {
  gl_.glGenFramebuffers(1, &drawn_);
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, drawn_);
  if (samples > 0) {
    gl_.glGenRenderbuffers(1, &samples_);
    gl_.glBindRenderbuffer(GL_RENDERBUFFER, samples_);
    gl_.glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_RGBA8, size.width(), size.height());
    gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, samples_);
  } else {
    smoothing_.emplace(gl);
    gl_.glGenTextures(1, &pixels_);
    gl_.glBindTexture(GL_TEXTURE_2D, pixels_);
    gl_.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, size.width(), size.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
    gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl_.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl_.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, pixels_, 0);
  }
  gl_.glGenRenderbuffers(1, &depth_);
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, depth_);
  gl_.glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_DEPTH_COMPONENT24, size.width(),
                                       size.height());
  gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_);
  RequireComplete(gl_);
  gl_.glGenFramebuffers(1, &resolved_);
  gl_.glGenRenderbuffers(1, &resolvedColor_);
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, resolved_);
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, resolvedColor_);
  gl_.glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, size.width(), size.height());
  gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, resolvedColor_);
  RequireComplete(gl_);
}

FrameBuffer::~FrameBuffer() {
  for (const GLuint *buffer : {&drawn_, &resolved_}) gl_.glDeleteFramebuffers(1, buffer);
  for (const GLuint *buffer : {&samples_, &depth_, &resolvedColor_}) gl_.glDeleteRenderbuffers(1, buffer);
  gl_.glDeleteTextures(1, &pixels_);
}

void FrameBuffer::Begin(float red, float green, float blue) {
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, drawn_);
  gl_.glViewport(0, 0, size_.width(), size_.height());
  gl_.glClearColor(red, green, blue, 1.0f);
  gl_.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

/// Makes one colour a pixel of what was drawn. Returns where colours may have changed: smoothing carries them
/// a little beyond the part.
QRect FrameBuffer::Resolve(const QRect &part) {
  if (smoothing_) {
    constexpr int Reach = EdgeSmoothing::Reach;
    const QRect reached = part.adjusted(-Reach, -Reach, Reach, Reach).intersected(QRect({}, size_));
    gl_.glBindFramebuffer(GL_FRAMEBUFFER, resolved_);
    gl_.glEnable(GL_SCISSOR_TEST);
    gl_.glScissor(reached.x(), reached.y(), reached.width(), reached.height());
    smoothing_->Draw(pixels_);
    gl_.glDisable(GL_SCISSOR_TEST);
    return reached;
  }
  const int left = part.x(), top = part.y(), right = left + part.width(), bottom = top + part.height();
  gl_.glBindFramebuffer(GL_READ_FRAMEBUFFER, drawn_);
  gl_.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolved_);
  gl_.glBlitFramebuffer(left, top, right, bottom, left, top, right, bottom, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  return part;
}

void FrameBuffer::Read(QImage &picture, const QRect &part) {
  const QRect changed = Resolve(part);
  gl_.glBindFramebuffer(GL_READ_FRAMEBUFFER, resolved_);
  gl_.glPixelStorei(GL_PACK_ALIGNMENT, 4);
  gl_.glPixelStorei(GL_PACK_ROW_LENGTH, size_.width());
  gl_.glReadPixels(changed.x(), changed.y(), changed.width(), changed.height(), GL_BGRA,
                   GL_UNSIGNED_INT_8_8_8_8_REV,
                   picture.scanLine(changed.y()) + static_cast<std::ptrdiff_t>(changed.x()) * 4);
}
