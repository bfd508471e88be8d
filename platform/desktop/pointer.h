#pragma once

// The pointer as the game sees it: a place that it puts home at every frame and reads as an offset. The real
// pointer is hidden and held meanwhile (`pointer_hold.h`), and its motion moves the game's.

#include "platform/desktop/pointer_hold.h"

#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <memory>

class Pointer {
public:
  ~Pointer() { LetGo(); }

  /// Puts the game's pointer at a place of a grid of 0 to 65535 on each axis of the screen.
  void MoveHome(int gridX, int gridY);

  /// The game's pointer. Without a hold it stands at its home.
  QPoint Place() const { return place_.toPoint(); }

  /// Whether the game wants the pointer hidden. It is hidden only while it is held.
  void SetHidden(bool hidden) { hidden_ = hidden; }

  /// Holds the real pointer over that widget, which gets all that mouse and buttons do meanwhile, or lets go
  /// of it for none.
  void Hold(QWidget *widget);
  void LetGo() { Hold(nullptr); }
  bool Held() const { return !widget_.isNull(); }

private:
  QPointer<QWidget> widget_;
  std::unique_ptr<PointerHold> hold_;
  bool hidden_ = false;
  QPointF place_; ///< the game's pointer
  QPointF home_;
};
