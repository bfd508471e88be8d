#pragma once

// The desktop window of a `Window` record, with one widget for each control. `Sync` runs at each pump.

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
  /// @throws FileError  if an image or document can't be read
  WindowView(DesktopMachine &machine, Window &window);
  ~WindowView() override;

  Window &Model() { return window_; }
  const Window &Model() const { return window_; }

  void Sync();                            ///< copies the changed properties to the widgets
  void SetOwner(const WindowView &owner); ///< keeps this window above the owner; call before `Open`
  void Open();                            ///< shows the window, centred and active
  void SetFocusTo(const Control &control);
  CanvasView *FindCanvas(const Canvas &canvas) const;
  CanvasView *AnyCanvas() const; ///< the canvas of the window, or null

  bool Painted() const { return painted_; } ///< at least once

  /// Whether the window has been active for so long that the mouse press that activated it must have arrived.
  /// The press arrives after the change of focus.
  bool Settled() const;

protected:
  void resizeEvent(QResizeEvent *event) override;
  void paintEvent(QPaintEvent *event) override;
  void mousePressEvent(QMouseEvent *event) override;
  void keyPressEvent(QKeyEvent *event) override;
  void closeEvent(QCloseEvent *event) override;
  void changeEvent(QEvent *event) override;

private:
  void SyncBackPictures();
  void Announce(const QString &caption); ///< announces every text that has changed, also the caption
  const QPixmap &BackPixmap(const std::string &name);

  DesktopMachine &machine_;
  Window &window_;
  QPixmap background_;
  std::vector<BackPicture> backPictures_; ///< as last copied
  std::map<std::string, QPixmap> backPixmaps_;
  bool painted_ = false;
  QPoint corner_;            ///< top left of the content; (0, 0) unless the window has been stretched
  QElapsedTimer activation_; ///< time since activation or deactivation
  std::vector<std::unique_ptr<ControlView>> views_;
  Announcer *announcer_;     ///< owned by this widget
  QString announcedCaption_; ///< as last announced
};
