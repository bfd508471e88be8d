#pragma once

// What is drawn into.

#include <QImage>
#include <QOpenGLFunctions_3_3_Core>
#include <QSize>

/// A picture off the screen, with several samples a pixel or one.
class FrameBuffer {
public:
  FrameBuffer(QOpenGLFunctions_3_3_Core &gl, QSize size, int samples);
  ~FrameBuffer();
  FrameBuffer(const FrameBuffer &) = delete;
  FrameBuffer &operator=(const FrameBuffer &) = delete;

  void Begin(float red, float green, float blue); ///< clears it and draws into it from now on
  void Read(QImage &picture, const QRect &part);  ///< into a picture of its size, Format_RGB32
  QSize Size() const { return size_; }

private:
  QOpenGLFunctions_3_3_Core &gl_;
  QSize size_;
  int samples_;
  GLuint drawn_ = 0, color_ = 0, depth_ = 0;
  GLuint resolved_ = 0, resolvedColor_ = 0;
};
