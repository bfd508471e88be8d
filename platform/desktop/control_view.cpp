#include "platform/desktop/control_view.h"

#include "platform/desktop/canvas_view.h"
#include "platform/desktop/typed_view.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

constexpr float PointsToPixels = 96.0f / 72.0f; ///< the windows are designed for 96 dpi

QColor Convert(const Color &color) { return {color.Red, color.Green, color.Blue}; }

constexpr int DisabledDarkness = 500; ///< a disabled box is a fifth as bright, percent

/// The widget of a canvas copies no properties; each drawing sets its image.
class CanvasControlView : public ControlView {
public:
  CanvasControlView(DesktopMachine &machine, Window &window, Canvas &model, QWidget &parent)
      : ControlView(model), widget_(new CanvasView(machine, window, model, parent)) {}
  QWidget *Widget() const override { return widget_; }

protected:
  void SyncOwn() override {}

private:
  CanvasView *widget_;
};

std::unique_ptr<ControlView> MakeBare(const ViewMaker &maker, Control &control) {
  if (auto view = maker.MakeShown(control)) return view;
  if (auto view = maker.MakeInput(control)) return view;
  if (auto view = maker.Try<Canvas, CanvasControlView>(control)) return view;
  throw std::logic_error("a control of an unknown kind");
}

} // namespace

QFont FontOf(const Typeface &typeface) {
  const bool serif = typeface.Name == "Times New Roman";
  // Typefaces with the same metrics, so that a substitute keeps the layout.
  QFont font(serif ? QStringList{"Liberation Serif", "Tinos", "Times New Roman"}
                   : QStringList{"Liberation Sans", "Arimo", "Arial"});
  font.setStyleHint(serif ? QFont::Serif : QFont::SansSerif);
  font.setPixelSize(static_cast<int>(std::lround(typeface.Points * PointsToPixels)));
  font.setBold(typeface.Bold);
  return font;
}

std::unique_ptr<ControlView> MakeView(DesktopMachine &machine, Window &window, Control &control,
                                      QWidget &parent) {
  auto view = MakeBare({machine, window, parent}, control);
  QWidget *widget = view->Widget();
  const Rectangle place = view->Extent();
  if (dynamic_cast<const PictureBox *>(&control)) {
    widget->move(place.Left, place.Top);
  } else {
    widget->setGeometry(place.Left, place.Top, std::max(place.Width, 1), std::max(place.Height, 1));
  }
  widget->setObjectName(Text(control.Name));
  if (!control.AccessibleName.empty()) widget->setAccessibleName(Text(control.AccessibleName));
  widget->setFont(FontOf(control.Font));
  view->Sync();
  view->Fit();
  return view;
}

void ControlView::Sync() {
  QWidget *widget = Widget();
  SyncOwn();
  if (synced_ && visible_ == control_.Visible && enabled_ == control_.Enabled &&
      foreColor_ == control_.ForeColor) {
    return;
  }
  const bool first = !synced_;
  synced_ = true;
  visible_ = control_.Visible;
  enabled_ = control_.Enabled;
  if (first || foreColor_ != control_.ForeColor) {
    foreColor_ = control_.ForeColor;
    QPalette palette = widget->palette();
    if (UsesOwnColor()) palette.setColor(QPalette::WindowText, Convert(foreColor_));
    if (control_.HasBackColor) {
      for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Base, Convert(control_.BackColor));
        palette.setColor(group, QPalette::Text, Convert(foreColor_));
      }
      // The toolkit draws the edge of a box in a shade of the window colour.
      for (const auto role : {QPalette::Base, QPalette::Window})
        palette.setColor(QPalette::Disabled, role, Convert(control_.BackColor).darker(DisabledDarkness));
      palette.setColor(QPalette::Disabled, QPalette::Text, Convert(control_.BackColor));
    }
    widget->setPalette(palette);
  }
  widget->setEnabled(enabled_);
  widget->setVisible(visible_);
}

QString ControlView::TakeAnnouncement() {
  if (!control_.Announced) return {};
  const QString text = control_.Visible ? SpokenText() : QString();
  return std::exchange(announced_, text) == text ? QString() : text;
}
