#pragma once

// What is drawn into.

#include "platform/desktop/renderer/edge_smoothing.h"

#include <QImage>
#include <QSize>

#include <optional>

/// A picture off the screen, with several samples a pixel, or one and its edges smoothed.
class FrameBuffer {
public:
  /// @param samples  of a pixel, 0 for one
  FrameBuffer(Gl &gl, QSize size, int samples);
  ~FrameBuffer();
  FrameBuffer(const FrameBuffer &) = delete;
  FrameBuffer &operator=(const FrameBuffer &) = delete;

  void Begin(float red, float green, float blue); ///< clears it and draws into it from now on

  /// Brings a part that has been drawn into a picture of its size, Format_RGB32.
  void Read(QImage &picture, const QRect &part);

  QSize Size() const { return size_; }

private:
  QRect Resolve(const QRect &part);

  Gl &gl_;
  QSize size_;
  GLuint drawn_ = 0, depth_ = 0;
  GLuint samples_ = 0;                     ///< colours, several a pixel ...
  GLuint pixels_ = 0;                      ///< ... or one
  std::optional<EdgeSmoothing> smoothing_; ///< of the latter
  GLuint resolved_ = 0, resolvedColor_ = 0;
};
