#pragma once

// The common base of the views of each kind of control, and their factory.

#include "platform/desktop/control_view.h"
#include "platform/desktop/desktop_machine.h"

#include <QFont>
#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <utility>

inline QString Text(const std::string &text) { return QString::fromStdString(text); }

/// A view whose control and widget are of these types.
template <class Record, class QtWidget> class View : public ControlView {
public:
  View(DesktopMachine &machine, Window &window, Record &model, QWidget &parent)
      : ControlView(model), machine_(machine), window_(window), model_(model),
        widget_(new QtWidget(&parent)) {}
  QWidget *Widget() const override { return widget_; }

protected:
  void Post(std::function<void()> call) { machine_.Post(window_, std::move(call)); }

  /// Shrinks the text until it fits, because a substitute for a missing typeface may be wider.
  template <class Fits> void ShrinkFontUntil(Fits fits) {
    constexpr int SmallestFont = 8; // pixels
    QFont font = widget_->font();
    while (!fits() && font.pixelSize() > SmallestFont) {
      font.setPixelSize(font.pixelSize() - 1);
      widget_->setFont(font);
    }
  }

  DesktopMachine &machine_;
  Window &window_;
  Record &model_;
  QtWidget *widget_; ///< owned by its parent
};

/// Creates the views of one window. Each maker returns null for controls of other kinds.
struct ViewMaker {
  DesktopMachine &machine;
  Window &window;
  QWidget &parent;

  std::unique_ptr<ControlView> MakeShown(Control &control) const; ///< display only (shown_views.cpp)
  std::unique_ptr<ControlView> MakeInput(Control &control) const; ///< interactive (input_views.cpp)

  /// A view of that type, if the control is of that kind.
  template <class Record, class ViewType> std::unique_ptr<ControlView> Try(Control &control) const {
    auto *record = dynamic_cast<Record *>(&control);
    if (!record) return nullptr;
    return std::make_unique<ViewType>(machine, window, *record, parent);
  }
};
