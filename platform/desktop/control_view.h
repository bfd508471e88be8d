#pragma once

// The widgets of the controls. What the game writes into a control's record is carried over to its widget;
// what the user does at the widget comes back through the machine's queue.

#include "platform/controls.h"

#include <QKeyEvent>
#include <QLabel>
#include <QWidget>

#include <memory>

class DesktopMachine;

class ControlView {
public:
  explicit ControlView(Control &control) : control_(control) {}
  virtual ~ControlView() = default;

  const Control &Model() const { return control_; }
  virtual QWidget *Widget() const = 0;

  /// The rectangle that its widget covers: the control's place and what it draws beside it.
  virtual Rectangle Extent() const { return control_.Place; }

  /// Brings the properties that have changed since the last call to the widget.
  void CarryOver();

  virtual void TakeFocus() { Widget()->setFocus(); }

  /// Picks the letter that, with Alt, presses the button: the first of its caption that isn't taken yet.
  virtual void ChooseMnemonic(QString & /*taken*/) {}

  /// Presses the button if Enter or Esc is its key; returns whether it is.
  virtual bool PressedBy(bool /*enter*/, bool /*escape*/) { return false; }

  /// Makes the text small enough for the control's place.
  virtual void Fit() {}

  /// Scrolls a document by a key that nobody else wanted.
  virtual void ScrollBy(QKeyEvent & /*event*/) {}

  /// Takes the name of the label that stands before it, if it is a field.
  virtual void BeNamedBy(QLabel & /*label*/) {}

  /// What a screen reader is to say: the words of an announced control that are new since the last call.
  QString News();

protected:
  virtual void CarryOverOwn() = 0;

  /// What the control says to who can't see it.
  virtual QString Words() const { return Widget()->accessibleName(); }

  /// Whether it is written in the control's own colour rather than the toolkit's.
  virtual bool OwnColor() const { return false; }

private:
  Control &control_;
  bool carried_ = false;
  bool visible_ = false;
  bool enabled_ = false;
  Color foreColor_;
  QString told_; ///< by `News`
};

std::unique_ptr<ControlView> MakeView(DesktopMachine &machine, Window &window, Control &control,
                                      QWidget &parent);
