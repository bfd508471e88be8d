#pragma once

// The widgets of the controls. Changes of a control's record are copied to its widget; user input at the
// widget goes into the machine's event queue.

#include "platform/controls.h"

#include <QFont>
#include <QKeyEvent>
#include <QLabel>
#include <QWidget>

#include <memory>

class DesktopMachine;

/// The toolkit's font for a typeface of the windows.
QFont FontOf(const Typeface &typeface);

class ControlView {
public:
  explicit ControlView(Control &control) : control_(control) {}
  virtual ~ControlView() = default;

  const Control &Model() const { return control_; }
  virtual QWidget *Widget() const = 0;

  /// The rectangle of the widget: the control's place and decorations beside it.
  virtual Rectangle Extent() const { return control_.Place; }

  /// Copies the properties that have changed since the last call to the widget.
  void Sync();

  virtual void TakeFocus() {
    Sync(); // a disabled widget takes no focus
    Widget()->setFocus();
  }

  /// Chooses the button's mnemonic: the first letter of its caption that isn't taken, and adds it to those.
  virtual void ChooseMnemonic(QString & /*taken*/) {}

  /// Presses the button if Enter or Esc is its key; returns whether it is.
  virtual bool PressedBy(bool /*enter*/, bool /*escape*/) { return false; }

  /// Shrinks the text to fit the control's place.
  virtual void Fit() {}

  /// Scrolls a document by a key that no other control handles.
  virtual void ScrollBy(QKeyEvent & /*event*/) {}

  /// Gives a field the label before it, whose text screen readers say as the name of the field.
  virtual void SetLabel(QLabel & /*label*/) {}

  /// The text to announce. Empty unless the control is announced and its text has changed since the last
  /// call.
  QString TakeAnnouncement();

protected:
  /// Copies the properties that only this kind of control has.
  virtual void SyncOwn() = 0;

  /// The text of the control for screen readers.
  virtual QString SpokenText() const { return Widget()->accessibleName(); }

  /// Whether the text has the control's colour rather than the toolkit's.
  virtual bool UsesOwnColor() const { return false; }

private:
  Control &control_;
  bool synced_ = false;
  bool visible_ = false;
  bool enabled_ = false;
  Color foreColor_;
  QString announced_; ///< text at the last call of `News`
};

std::unique_ptr<ControlView> MakeView(DesktopMachine &machine, Window &window, Control &control,
                                      QWidget &parent);
