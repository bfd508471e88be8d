#pragma once

// A window of the desktop that shows a `Window` record: one widget for each control, to which changed
// properties are carried over at each pump.

#include "platform/desktop/canvas_view.h"
#include "platform/desktop/control_view.h"

#include <QElapsedTimer>
#include <QPixmap>
#include <QWidget>

#include <map>
#include <memory>
#include <string>
#include <vector>

class Announcer;
class DesktopMachine;

class WindowView : public QWidget {
public:
  /// @throws FileError  that names a picture or document which can't be read
  WindowView(DesktopMachine &machine, Window &window);
  ~WindowView() override;

  Window &Model() { return window_; }
  const Window &Model() const { return window_; }

  void CarryOver();
  void BelongTo(const WindowView &owner); ///< to stay above it and go with it; before `Open`
  void Open();                            ///< puts the window in the middle of the screen, active
  void SetFocusTo(const Control &control);
  CanvasView *FindCanvas(const Canvas &canvas) const;
  CanvasView *AnyCanvas() const; ///< the window's canvas, null if it has none

  /// Whether it is the active window, and has been for so long that the press by which the player came back
  /// to it has arrived: focus and press come one after the other.
  bool Settled() const;

protected:
  void resizeEvent(QResizeEvent *event) override;
  void paintEvent(QPaintEvent *event) override;
  void mousePressEvent(QMouseEvent *event) override;
  void keyPressEvent(QKeyEvent *event) override;
  void closeEvent(QCloseEvent *event) override;
  void changeEvent(QEvent *event) override;

private:
  void CarryOverBackPictures();
  void Announce(const QString &caption); ///< tells screen readers what is new, the caption included
  const QPixmap &BackPixmap(const std::string &name);

  DesktopMachine &machine_;
  Window &window_;
  QPixmap background_;
  std::vector<BackPicture> backPictures_; ///< as carried over last
  std::map<std::string, QPixmap> backPixmaps_;
  QPoint corner_;            ///< of the content: the window's own, unless it has been stretched
  QElapsedTimer activation_; ///< since the window became active or inactive
  std::vector<std::unique_ptr<ControlView>> views_;
  Announcer *announcer_; ///< owned by this widget
  QString toldCaption_;
};
