#pragma once

// The render target.

#include "platform/desktop/renderer/edge_smoothing.h"
#include "platform/desktop/renderer/open_gl.h"

#include <QOpenGLFramebufferObject>

#include <optional>

/// A frame off the screen, with several samples a pixel, or with one and its edges smoothed.
class FrameBuffer {
public:
  /// @param samples  per pixel, 0 for one
  /// @throws RendererError
  FrameBuffer(Gl &gl, QSize size, int samples);

  void Begin();       ///< clears it and binds it
  void Keep();        ///< saves what has been drawn so far
  void BeginOnKept(); ///< restores it and binds it

  /// Reads the frame back.
  /// @param image  of the same size, Format_RGB32; holds the last frame
  /// @return whether the image has changed
  bool Read(QImage &image);

  QSize Size() const { return drawn_.size(); }

private:
  void DrawInto();

  Gl &gl_;
  QOpenGLFramebufferObject drawn_;
  std::optional<QOpenGLFramebufferObject> kept_;
  std::optional<QOpenGLFramebufferObject> resolved_; ///< of several samples a pixel
  std::optional<EdgeSmoothing> smoothing_;           ///< of one sample a pixel
};
