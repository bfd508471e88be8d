#pragma once

// What is drawn into.

#include "platform/desktop/renderer/edge_smoothing.h"
#include "platform/desktop/renderer/open_gl.h"

#include <QOpenGLFramebufferObject>

#include <optional>

/// A frame off the screen, with several samples a pixel, or with one and its edges smoothed.
class FrameBuffer {
public:
  /// @param samples  of a pixel, 0 for one
  /// @throws RendererError
  FrameBuffer(Gl &gl, QSize size, int samples);

  void Begin(float red, float green, float blue); ///< clears it and draws into it from now on

  void Keep();        ///< keeps what has been drawn, with its depths
  void BeginOnKept(); ///< begins with what was kept last

  /// Brings what has been drawn into an image of its size, Format_RGB32, which holds what was read last.
  /// @return whether the image has changed
  bool Read(QImage &image);

  QSize Size() const { return drawn_.size(); }

private:
  void Require(const QOpenGLFramebufferObject &buffer) const;
  void DrawInto();

  Gl &gl_;
  QOpenGLFramebufferObject drawn_;
  std::optional<QOpenGLFramebufferObject> kept_;
  std::optional<QOpenGLFramebufferObject> resolved_; ///< one colour a pixel of several samples ...
  std::optional<EdgeSmoothing> smoothing_;           ///< ... or of one
};
