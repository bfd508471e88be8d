#pragma once

// The pointer as the game sees it: a position that it resets every frame and reads as an offset. The real
// pointer is hidden and captured meanwhile (`pointer_hold.h`), and its motion moves the game's pointer.

#include "platform/desktop/pointer_hold.h"

#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QWidget>

#include <memory>

class Pointer {
public:
  ~Pointer() { Release(); }

  /// Moves the game's pointer to a position on a grid of 0 to 65535 on each axis of the screen.
  void MoveHome(int gridX, int gridY);

  /// Position of the game's pointer; its home while nothing is captured.
  QPoint Place() const { return place_.toPoint(); }

  /// Whether the game wants the pointer hidden. It is hidden only while captured.
  void SetHidden(bool hidden) { hidden_ = hidden; }

  /// Captures the real pointer over a widget, which then gets all mouse events; null releases it.
  void Hold(QWidget *widget);
  void Release() { Hold(nullptr); }
  bool Held() const { return !widget_.isNull(); }

private:
  QPointer<QWidget> widget_;
  std::unique_ptr<PointerHold> hold_;
  bool hidden_ = false;
  /// The screen under the grid, as it was at first. The game measures its home only once, so a screen that
  /// changes later, by another resolution or another monitor, must not move it.
  QRect screen_;
  QPointF place_; ///< the game's pointer
  QPointF home_;
};
