#pragma once

// The pointer as the game sees it: a place that it puts home at every frame and reads as an offset. The real
// pointer is hidden meanwhile, and moved back only when it strays, since moving it at every frame loses the
// motion that lands between a read and a move.

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QWidget>

class Pointer : public QObject {
public:
  ~Pointer() override { LetGo(); }

  /// Puts the game's pointer at a place of a grid of 0 to 65535 on each axis of the screen.
  void MoveHome(int gridX, int gridY);

  /// The game's pointer, logical pixels of the screen. Without a hold it stands at its home.
  QPoint Place() const { return place_.toPoint(); }

  /// Whether the game wants the pointer hidden. It is hidden only while it is held.
  void SetHidden(bool hidden) { hidden_ = hidden; }

  /// Holds the real pointer over that widget, which gets all that mouse and buttons do meanwhile, or lets go
  /// of it for none.
  void Hold(QWidget *widget);
  void LetGo() { Hold(nullptr); }
  bool Held() const { return !widget_.isNull(); }

  bool eventFilter(QObject *object, QEvent *event) override;

private:
  void MoveReal();

  QPointer<QWidget> widget_;
  bool hidden_ = false;
  QPointF place_; ///< the game's pointer
  QPointF home_;
  QPointF real_;           ///< where the real pointer was seen last
  QPoint anchor_;          ///< where it is moved back to
  bool returning_ = false; ///< it has been moved back, and its motion there hasn't been seen yet
};
