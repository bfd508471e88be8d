#pragma once

// What is drawn into: the picture, and the depths that the key light sees.

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
  void Read(QImage &picture);                     ///< into a picture of its size, Format_RGB32
  QSize Size() const { return size_; }

private:
  QOpenGLFunctions_3_3_Core &gl_;
  QSize size_;
  int samples_;
  GLuint drawn_ = 0, color_ = 0, depth_ = 0;
  GLuint resolved_ = 0, resolvedColor_ = 0;
};

/// A square of depths that is looked up with a comparison.
class ShadowMap {
public:
  ShadowMap(QOpenGLFunctions_3_3_Core &gl, int size);
  ~ShadowMap();
  ShadowMap(const ShadowMap &) = delete;
  ShadowMap &operator=(const ShadowMap &) = delete;

  void Begin();
  void End();
  GLuint Texture() const { return texture_; }
  int Size() const { return size_; }

private:
  QOpenGLFunctions_3_3_Core &gl_;
  int size_;
  GLuint buffer_ = 0, texture_ = 0;
};
