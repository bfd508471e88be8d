#include "platform/desktop/window_view.h"

#include "platform/desktop/accessible.h"
#include "platform/desktop/desktop_machine.h"
#include "platform/desktop/files.h"
#include "platform/desktop/focus_ring.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace {

QRect PlaceOf(const BackPicture &picture, const QPixmap &pixmap) {
  const QSize size = pixmap.deviceIndependentSize().toSize();
  return {picture.Left, picture.Top, size.width() / picture.Columns, size.height()};
}

/// Whether the game paints the background, and not the toolkit. The backgrounds of the game are dark.
bool PaintsBackground(const Window &window) { return window.HasBackColor || !window.Picture.empty(); }

} // namespace

WindowView::WindowView(DesktopMachine &machine, Window &window)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowCloseButtonHint),
      machine_(machine), window_(window) {
  SetAccessibleRole(*this, QAccessible::Window);
  setFixedSize(window.Width, window.Height);
  setObjectName(QString::fromStdString(window.Name));
  setWindowTitle(QString::fromStdString(window.Caption));
  announcedCaption_ = windowTitle();
  if (!window.Picture.empty()) {
    background_ = LoadPicture(machine, *this, window.Picture);
    auto *text = new PictureText(*this, LoadPictureText(machine.AppPath(), window.Picture));
    text->resize(size());
  }
  QWidget *last = nullptr;
  QLabel *label = nullptr;
  QString mnemonics;
  for (Control *control : window.Controls) {
    views_.push_back(MakeView(machine, window, *control, *this));
    views_.back()->ChooseMnemonic(mnemonics);
    QWidget *widget = views_.back()->Widget();
    if (label) views_.back()->SetLabel(*label);
    label = dynamic_cast<Label *>(control) ? qobject_cast<QLabel *>(widget) : nullptr;
    if (widget->focusPolicy() == Qt::NoFocus) continue;
    if (last) setTabOrder(last, widget);
    last = widget;
  }
  announcer_ = new Announcer(*this);
  // Owned by this widget.
  if (PaintsBackground(window)) {
    new FocusRing(*this, QColor(255, 225, 77), QColor(20, 32, 20));
  } else {
    new FocusRing(*this, palette().color(QPalette::WindowText), palette().color(QPalette::Window));
  }
}

WindowView::~WindowView() = default;

void WindowView::Sync() {
  const QString caption = QString::fromStdString(window_.Caption);
  if (windowTitle() != caption) setWindowTitle(caption);
  SyncBackPictures();
  for (const auto &view : views_) view->Sync();
  if (isActiveWindow()) Announce(caption);
}

void WindowView::Announce(const QString &caption) {
  QStringList news;
  // Screen readers read the initial caption themselves.
  if (std::exchange(announcedCaption_, caption) != caption) news += caption;
  for (const auto &view : views_) {
    if (const QString text = view->TakeAnnouncement(); !text.isEmpty()) news += text;
  }
  if (!news.isEmpty()) announcer_->Say(news.join('\n'));
}

const QPixmap &WindowView::BackPixmap(const std::string &name) {
  auto found = backPixmaps_.find(name);
  if (found == backPixmaps_.end())
    found = backPixmaps_.emplace(name, LoadPicture(machine_, *this, name)).first;
  return found->second;
}

void WindowView::SyncBackPictures() {
  backPictures_.resize(window_.BackPictures.size());
  for (std::size_t i = 0; i < backPictures_.size(); ++i) {
    const BackPicture &now = *window_.BackPictures[i];
    BackPicture &before = backPictures_[i];
    if (now == before) continue;
    for (const BackPicture &changed : {before, now}) {
      if (changed.Visible) update(PlaceOf(changed, BackPixmap(changed.Picture)).translated(corner_));
    }
    before = now;
  }
}

void WindowView::SetOwner(const WindowView &owner) {
  setWindowFlag(Qt::Dialog); // Qt tells the window manager the owner only of a dialog
  winId();                   // creates the native window
  windowHandle()->setTransientParent(owner.windowHandle());
}

void WindowView::Open() {
  const QRect area = screen()->availableGeometry();
  // A window larger than the area would have its title bar, and with it its close box, beyond the edge. So
  // would every window while all monitors are off: the area is then a single pixel.
  const QPoint middle = area.center() - QPoint(window_.Width / 2, window_.Height / 2);
  move(std::max(middle.x(), area.left()), std::max(middle.y(), area.top()));
  show();
  raise();
  activateWindow();
  if (CanvasView *canvas = AnyCanvas()) {
    canvas->setFocus();
  } else {
    // Screen readers read the initial text of ordinary controls themselves, so discard it.
    for (const auto &view : views_) view->TakeAnnouncement();
  }
}

void WindowView::SetFocusTo(const Control &control) {
  for (const auto &view : views_) {
    if (&view->Model() == &control) view->TakeFocus();
  }
}

CanvasView *WindowView::FindCanvas(const Canvas &canvas) const {
  for (const auto &view : views_) {
    if (&view->Model() == &canvas) return dynamic_cast<CanvasView *>(view->Widget());
  }
  return nullptr;
}

CanvasView *WindowView::AnyCanvas() const {
  for (const auto &view : views_) {
    if (auto *canvas = dynamic_cast<CanvasView *>(view->Widget())) return canvas;
  }
  return nullptr;
}

bool WindowView::Settled() const {
  constexpr qint64 PressFollows = 100; // ms
  return isActiveWindow() && (!activation_.isValid() || activation_.hasExpired(PressFollows));
}

void WindowView::resizeEvent(QResizeEvent *) {
  const QPoint corner((width() - window_.Width) / 2, (height() - window_.Height) / 2);
  for (QObject *child : children()) {
    auto *widget = qobject_cast<QWidget *>(child);
    if (widget && !widget->isWindow()) widget->move(widget->pos() + corner - corner_);
  }
  corner_ = corner;
}

void WindowView::paintEvent(QPaintEvent *) {
  painted_ = true;
  QPainter painter(this);
  const QRect content(corner_, QSize(window_.Width, window_.Height));
  if (content != rect()) {
    // A window manager has stretched the fixed size, for full screen or a tile.
    painter.fillRect(rect(), Qt::black);
    painter.fillRect(content, palette().window());
    painter.setClipRect(content);
  }
  if (window_.HasBackColor) {
    painter.fillRect(content, QColor(window_.BackColor.Red, window_.BackColor.Green, window_.BackColor.Blue));
  }
  painter.translate(corner_);
  if (!background_.isNull()) painter.drawPixmap(0, 0, background_);
  for (const BackPicture &picture : backPictures_) {
    if (!picture.Visible) continue;
    const QPixmap &pixmap = BackPixmap(picture.Picture);
    const double column = static_cast<double>(pixmap.width()) / picture.Columns;
    painter.drawPixmap(QRectF(PlaceOf(picture, pixmap)), pixmap,
                       QRectF(picture.Column * column, 0, column, pixmap.height()));
  }
}

void WindowView::mousePressEvent(QMouseEvent *) {
  machine_.Post(window_, [this] {
    if (window_.Click) window_.Click();
  });
}

void WindowView::keyPressEvent(QKeyEvent *event) {
  // A key that stays down presses one button, not also the one that gets the focus then.
  const bool pressed = !event->isAutoRepeat();
  const bool enter = pressed && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter);
  const bool escape = pressed && event->key() == Qt::Key_Escape;
  for (const auto &view : views_) {
    // Enter presses the focused button, or else the window's default button.
    if (view->PressedBy(enter, escape)) return;
  }
  if (escape && window_.Escape) {
    machine_.Post(window_, [this] { window_.Escape(); });
    return;
  }
  for (const auto &view : views_) view->ScrollBy(*event);
}

void WindowView::closeEvent(QCloseEvent *event) {
  event->ignore();
  machine_.Post(
      window_, [this] { CloseByUser(machine_, window_); }, DesktopMachine::Delivery::CloseBox);
}

void WindowView::changeEvent(QEvent *event) {
  if (event->type() != QEvent::ActivationChange) return;
  activation_.start();
  if (isActiveWindow() || !window_.Deactivate) return;
  machine_.Post(
      window_, [this] { window_.Deactivate(); }, DesktopMachine::Delivery::UnderModal);
}
