#include "platform/desktop/plain_box.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <xcb/xcb.h>

#include <algorithm>
#include <utility>

namespace {

constexpr int BitsOfPalette = 8;
// Pixels.
constexpr int Width = 480, Margin = 20, Icon = 32, ButtonWidth = 80, ButtonHeight = 26;

xcb_connection_t *XConnection() {
  const auto *x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x ? x->connection() : nullptr;
}

} // namespace

bool PlainBox::Needed() {
  return QGuiApplication::primaryScreen()->depth() <= BitsOfPalette && XConnection() != nullptr;
}

PlainBox::PlainBox(const MessageBox &box, std::function<void()> answered) : answered_(std::move(answered)) {
  const QString text = QString::fromStdString(box.Text);
  const int left = box.Critical ? Icon + 2 * Margin : Margin;
  constexpr int Unlimited = 10000;
  const QRect room(left, Margin, Width - left - Margin, Unlimited);
  const QRect words = QFontMetrics(QGuiApplication::font()).boundingRect(room, Qt::TextWordWrap, text);
  const int below = Margin + std::max(words.height(), box.Critical ? Icon : 0);
  button_ = {Width - Margin - ButtonWidth, below + Margin, ButtonWidth, ButtonHeight};

  setFlags(Qt::Dialog);
  setModality(Qt::ApplicationModal);
  setTitle(QString::fromStdString(box.Title));
  const QSize size(Width, button_.bottom() + Margin);
  setMinimumSize(size);
  setMaximumSize(size);
  setPosition(screen()->geometry().center() - QPoint(size.width() / 2, size.height() / 2));

  image_ = QImage(size, QImage::Format_MonoLSB);
  image_.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
  image_.fill(0);
  QPainter painter(&image_);
  painter.setFont(QGuiApplication::font());
  painter.drawText(words, Qt::TextWordWrap, text);
  painter.drawRect(button_);
  painter.drawRect(button_.adjusted(1, 1, -1, -1)); // a default button has a double frame
  painter.drawText(button_, Qt::AlignCenter, "OK");
  if (!box.Critical) return;
  const QRect icon(Margin, Margin, Icon, Icon), cross = icon.adjusted(10, 10, -10, -10);
  painter.setBrush(Qt::black);
  painter.drawEllipse(icon);
  painter.setPen(QPen(Qt::white, 4));
  painter.drawLine(cross.topLeft(), cross.bottomRight());
  painter.drawLine(cross.topRight(), cross.bottomLeft());
}

void PlainBox::exposeEvent(QExposeEvent *) {
  if (!isExposed()) return;
  xcb_connection_t *x = XConnection();
  const xcb_setup_t *setup = xcb_get_setup(x);
  const xcb_screen_t *screen = xcb_setup_roots_iterator(setup).data;
  const auto window = static_cast<xcb_window_t>(winId());
  const xcb_gcontext_t context = xcb_generate_id(x);
  const std::uint32_t colours[] = {screen->black_pixel, screen->white_pixel};
  xcb_create_gc(x, context, window, XCB_GC_FOREGROUND | XCB_GC_BACKGROUND, colours);
  const QImage bits = setup->bitmap_format_bit_order == XCB_IMAGE_ORDER_LSB_FIRST
                          ? image_
                          : image_.convertToFormat(QImage::Format_Mono);
  xcb_put_image(x, XCB_IMAGE_FORMAT_XY_BITMAP, window, context, static_cast<std::uint16_t>(bits.width()),
                static_cast<std::uint16_t>(bits.height()), 0, 0, 0, 1,
                static_cast<std::uint32_t>(bits.sizeInBytes()), bits.constBits());
  xcb_free_gc(x, context);
  xcb_flush(x);
}

void PlainBox::keyPressEvent(QKeyEvent *event) {
  const auto key = event->key();
  if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space || key == Qt::Key_Escape)
    Answer();
}

void PlainBox::mouseReleaseEvent(QMouseEvent *event) {
  if (button_.contains(event->position().toPoint())) Answer();
}

bool PlainBox::event(QEvent *event) {
  if (event->type() == QEvent::Close) Answer();
  return QWindow::event(event);
}

void PlainBox::Answer() {
  if (const auto answered = std::exchange(answered_, nullptr)) answered();
}
