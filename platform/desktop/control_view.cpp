#include "platform/desktop/control_view.h"

#include "platform/desktop/canvas_view.h"
#include "platform/desktop/desktop_machine.h"
#include "platform/desktop/painted_views.h"
#include "platform/desktop/window_view.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBrowser>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

constexpr float PointsToPixels = 96.0f / 72.0f; ///< the windows are laid out for 96 dots to the inch

QString Text(const std::string &text) { return QString::fromStdString(text); }
QColor Convert(const Color &color) { return {color.Red, color.Green, color.Blue}; }

QFont FontOf(const Typeface &typeface) {
  const bool serif = typeface.Name == "Times New Roman";
  // Each is as wide as the other: where one is missing the layout stays.
  QFont font(serif ? QStringList{"Liberation Serif", "Tinos", "Times New Roman"}
                   : QStringList{"Liberation Sans", "Arimo", "Arial"});
  font.setStyleHint(serif ? QFont::Serif : QFont::SansSerif);
  font.setPixelSize(static_cast<int>(std::lround(typeface.Points * PointsToPixels)));
  font.setBold(typeface.Bold);
  return font;
}

/// A view whose control and widget are of these types.
template <class Record, class QtWidget> class View : public ControlView {
public:
  View(DesktopMachine &machine, Window &window, Record &model, QWidget &parent)
      : ControlView(model), machine_(machine), window_(window), model_(model),
        widget_(new QtWidget(&parent)) {}
  QWidget *Widget() const override { return widget_; }

protected:
  void Post(std::function<void()> call) { machine_.Post(window_, std::move(call)); }

  DesktopMachine &machine_;
  Window &window_;
  Record &model_;
  QtWidget *widget_; ///< owned by its parent
};

class LabelView : public View<Label, QLabel> {
public:
  LabelView(DesktopMachine &machine, Window &window, Label &model, QWidget &parent)
      : View(machine, window, model, parent) {
    const auto across = model.Alignment == Align::Left    ? Qt::AlignLeft
                        : model.Alignment == Align::Right ? Qt::AlignRight
                                                          : Qt::AlignHCenter;
    widget_->setAlignment(across | Qt::AlignTop);
    widget_->setWordWrap(model.WordWrap);
    widget_->setTextFormat(Qt::PlainText);
    // A click on a label is a click on what lies under it.
    widget_->setAttribute(Qt::WA_TransparentForMouseEvents);
    if (model.Border) {
      constexpr int Margin = 1; // pixel
      widget_->setFrameStyle(QFrame::Box | QFrame::Plain);
      widget_->setAutoFillBackground(true);
      widget_->setMargin(Margin);
      widget_->setIndent(0); // nine lines fill the frame from top to bottom
    }
  }

  /// Where the typeface is missing another takes its place, and a wider one would be cut off.
  void Fit() override {
    constexpr int SmallestLetters = 8; // pixels
    QFont font = widget_->font();
    const auto fits = [&] {
      return model_.WordWrap ? widget_->heightForWidth(widget_->width()) <= widget_->height()
                             : widget_->sizeHint().width() <= widget_->width();
    };
    while (!fits() && font.pixelSize() > SmallestLetters) {
      font.setPixelSize(font.pixelSize() - 1);
      widget_->setFont(font);
    }
  }

protected:
  void CarryOverOwn() override {
    if (widget_->text() != Text(model_.Caption)) widget_->setText(Text(model_.Caption));
  }
  /// On the toolkit's own ground, dark on some desktops, only the toolkit knows what can be read.
  bool OwnColor() const override {
    return !model_.Border && (window_.HasBackColor || !window_.Picture.empty());
  }
};

class TextBoxView : public View<TextBox, QLineEdit> {
public:
  TextBoxView(DesktopMachine &machine, Window &window, TextBox &model, QWidget &parent)
      : View(machine, window, model, parent) {
    widget_->setReadOnly(model.Locked);
    if (model.Locked) widget_->setFocusPolicy(Qt::NoFocus);
    if (model.MaxLength > 0) widget_->setMaxLength(model.MaxLength);
    QObject::connect(widget_, &QLineEdit::textEdited, [this](const QString &text) {
      Post([this, text] {
        model_.Text = text.toStdString();
        carriedText_ = model_.Text;
        if (model_.KeyPress && !text.isEmpty())
          model_.KeyPress(static_cast<std::int16_t>(text.back().unicode()));
      });
    });
    QObject::connect(widget_, &QLineEdit::returnPressed, [this] {
      Post([this] {
        if (model_.KeyPress) model_.KeyPress(KeyCodes::Enter);
      });
    });
  }

  void TakeFocus() override {
    CarryOver();
    widget_->setFocus();
    if (model_.SelLength > 0) widget_->setSelection(model_.SelStart, model_.SelLength);
  }

protected:
  void CarryOverOwn() override {
    if (carriedText_ == model_.Text) return;
    carriedText_ = model_.Text;
    widget_->setText(Text(model_.Text));
    widget_->setCursorPosition(0);
  }

private:
  std::string carriedText_;
};

class ButtonView : public View<CommandButton, QPushButton> {
public:
  ButtonView(DesktopMachine &machine, Window &window, CommandButton &model, QWidget &parent)
      : View(machine, window, model, parent) {
    QObject::connect(widget_, &QPushButton::clicked, [this] { Press(); });
    // The toolkit's own grey is too pale to read what the button will do once it can be pressed.
    QPalette palette = widget_->palette();
    const QColor text = palette.color(QPalette::Active, QPalette::ButtonText),
                 back = palette.color(QPalette::Active, QPalette::Button);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText,
                     QColor((text.red() + back.red()) / 2, (text.green() + back.green()) / 2,
                            (text.blue() + back.blue()) / 2));
    widget_->setPalette(palette);
  }

  void ChooseMnemonic(QString &taken) override {
    for (const QChar letter : Text(model_.Caption).toUpper()) {
      if (!letter.isLetter() || taken.contains(letter)) continue;
      mnemonic_ = letter;
      taken += letter;
      return;
    }
  }

  bool PressedBy(bool enter, bool escape) override {
    if (!widget_->isEnabled()) return false;
    if (!(enter && (widget_->hasFocus() || model_.Default)) && !(escape && model_.Cancel)) return false;
    Press();
    return true;
  }

protected:
  void CarryOverOwn() override {
    QString caption = Text(model_.Caption).replace("&", "&&");
    if (!mnemonic_.isNull()) {
      const auto at = caption.indexOf(mnemonic_, 0, Qt::CaseInsensitive);
      if (at >= 0) caption.insert(at, '&');
    }
    if (widget_->text() != caption) widget_->setText(caption);
  }

private:
  void Press() {
    Post([this] {
      if (model_.Enabled && model_.Click) model_.Click();
    });
  }

  QChar mnemonic_; ///< Alt and this letter press the button; it is underlined
};

class CheckBoxView : public View<CheckBox, QCheckBox> {
public:
  CheckBoxView(DesktopMachine &machine, Window &window, CheckBox &model, QWidget &parent)
      : View(machine, window, model, parent) {
    QObject::connect(widget_, &QCheckBox::clicked, [this](bool ticked) {
      Post([this, ticked] {
        model_.Value = ticked ? 1 : 0;
        if (model_.Click) model_.Click();
      });
    });
  }

protected:
  void CarryOverOwn() override {
    if (carried_ == model_.Value) return;
    carried_ = model_.Value;
    widget_->setChecked(model_.Value != 0);
  }

private:
  int carried_ = -1;
};

/// Rows to choose from: a list box or a drop-down list.
template <class Record, class QtWidget> class RowsView : public View<Record, QtWidget> {
public:
  RowsView(DesktopMachine &machine, Window &window, Record &model, QWidget &parent)
      : View<Record, QtWidget>(machine, window, model, parent) {
    const auto chosen = [this](int row) {
      if (filling_) return;
      this->Post([this, row] {
        this->model_.ListIndex = row;
        carriedRow_ = row;
        if (this->model_.Click) this->model_.Click();
      });
    };
    if constexpr (std::is_same_v<QtWidget, QListWidget>) {
      QObject::connect(this->widget_, &QListWidget::currentRowChanged, chosen);
    } else {
      QObject::connect(this->widget_, &QComboBox::currentIndexChanged, chosen);
    }
  }

protected:
  void CarryOverOwn() override {
    filling_ = true;
    if (carriedRows_ != this->model_.List) {
      carriedRows_ = this->model_.List;
      this->widget_->clear();
      for (const std::string &row : carriedRows_) this->widget_->addItem(Text(row));
      carriedRow_ = -2;
    }
    if (carriedRow_ != this->model_.ListIndex) {
      carriedRow_ = this->model_.ListIndex;
      if constexpr (std::is_same_v<QtWidget, QListWidget>) {
        this->widget_->setCurrentRow(carriedRow_);
      } else {
        this->widget_->setCurrentIndex(carriedRow_);
      }
    }
    filling_ = false;
  }

private:
  std::vector<std::string> carriedRows_;
  int carriedRow_ = -2;
  bool filling_ = false;
};

class PictureView : public View<PictureBox, QLabel> {
public:
  PictureView(DesktopMachine &machine, Window &window, PictureBox &model, QWidget &parent)
      : View(machine, window, model, parent) {
    widget_->setAutoFillBackground(true);
    widget_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    widget_->setPixmap(LoadPicture(machine, parent, model.Picture));
    // The box is as large as its picture: what its place has beyond it would show as a bare edge.
    widget_->resize(widget_->pixmap().deviceIndependentSize().toSize());
  }

protected:
  void CarryOverOwn() override {}
};

/// A document that scrolls by wheel, bar and keys, though the keyboard stays with a button.
class DocumentView : public View<RichTextBox, QTextBrowser> {
public:
  DocumentView(DesktopMachine &machine, Window &window, RichTextBox &model, QWidget &parent)
      : View(machine, window, model, parent) {
    const auto file = machine.AppPath() / model.Document;
    if (!std::filesystem::is_regular_file(file)) {
      throw std::runtime_error('"' + model.Document + "\": the document can't be read");
    }
    widget_->setSource(QUrl::fromLocalFile(Text(file.string())));
    widget_->setTextInteractionFlags(Qt::NoTextInteraction);
    widget_->setFocusPolicy(Qt::NoFocus);
    widget_->viewport()->installEventFilter(&filter_);
    filter_.pressed = [this] {
      Post([this] {
        if (model_.GotFocus) model_.GotFocus();
      });
    };
  }

  void ScrollBy(QKeyEvent &event) override {
    QScrollBar *bar = widget_->verticalScrollBar();
    switch (event.key()) {
    case Qt::Key_PageDown:
      bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
      break;
    case Qt::Key_PageUp:
      bar->triggerAction(QAbstractSlider::SliderPageStepSub);
      break;
    case Qt::Key_Down:
      bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
      break;
    case Qt::Key_Up:
      bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
      break;
    case Qt::Key_Home:
      bar->triggerAction(QAbstractSlider::SliderToMinimum);
      break;
    case Qt::Key_End:
      bar->triggerAction(QAbstractSlider::SliderToMaximum);
      break;
    default:
      break;
    }
  }

protected:
  void CarryOverOwn() override {}

private:
  struct PressFilter : QObject {
    std::function<void()> pressed;
    bool eventFilter(QObject *, QEvent *event) override {
      if (event->type() == QEvent::MouseButtonPress) pressed();
      return false;
    }
  };
  PressFilter filter_;
};

class MeterView : public View<ProgressBar, MeterWidget> {
public:
  using View::View;

protected:
  void CarryOverOwn() override { widget_->SetLevel((model_.Value - model_.Min) / (model_.Max - model_.Min)); }
};

class LineView : public View<Line, LineWidget> {
public:
  using View::View;

protected:
  void CarryOverOwn() override {}
  bool OwnColor() const override { return true; }
};

class ShapeView : public View<Shape, ShapeWidget> {
public:
  using View::View;

protected:
  void CarryOverOwn() override {}
  bool OwnColor() const override { return true; }
};

/// The canvas's widget carries nothing over: its picture comes with each drawing.
class CanvasControlView : public ControlView {
public:
  CanvasControlView(DesktopMachine &machine, Window &window, Canvas &model, QWidget &parent)
      : ControlView(model), widget_(new CanvasView(machine, window, model, parent)) {}
  QWidget *Widget() const override { return widget_; }

protected:
  void CarryOverOwn() override {}

private:
  CanvasView *widget_;
};

/// Makes the view of a control if it is of that kind.
struct Factory {
  DesktopMachine &machine;
  Window &window;
  Control &control;
  QWidget &parent;

  template <class Record, class ViewType> bool Try(std::unique_ptr<ControlView> &view) const {
    auto *record = dynamic_cast<Record *>(&control);
    if (record) view = std::make_unique<ViewType>(machine, window, *record, parent);
    return record != nullptr;
  }
};

std::unique_ptr<ControlView> MakeBare(DesktopMachine &machine, Window &window, Control &control,
                                      QWidget &parent) {
  const Factory factory{machine, window, control, parent};
  std::unique_ptr<ControlView> view;
  const bool known =
      factory.Try<Label, LabelView>(view) || factory.Try<TextBox, TextBoxView>(view) ||
      factory.Try<CommandButton, ButtonView>(view) || factory.Try<CheckBox, CheckBoxView>(view) ||
      factory.Try<ListBox, RowsView<ListBox, QListWidget>>(view) ||
      factory.Try<ComboBox, RowsView<ComboBox, QComboBox>>(view) ||
      factory.Try<PictureBox, PictureView>(view) || factory.Try<ProgressBar, MeterView>(view) ||
      factory.Try<RichTextBox, DocumentView>(view) || factory.Try<Line, LineView>(view) ||
      factory.Try<Shape, ShapeView>(view) || factory.Try<Canvas, CanvasControlView>(view);
  if (known) return view;
  throw std::logic_error("a control of an unknown kind");
}

} // namespace

std::unique_ptr<ControlView> MakeView(DesktopMachine &machine, Window &window, Control &control,
                                      QWidget &parent) {
  auto view = MakeBare(machine, window, control, parent);
  QWidget *widget = view->Widget();
  const Rectangle &place = control.Place;
  if (dynamic_cast<const PictureBox *>(&control)) {
    widget->move(place.Left, place.Top);
  } else {
    widget->setGeometry(place.Left, place.Top, std::max(place.Width, 1), std::max(place.Height, 1));
  }
  widget->setObjectName(Text(control.Name));
  widget->setAccessibleName(Text(control.AccessibleName));
  widget->setFont(FontOf(control.Font));
  view->CarryOver();
  view->Fit();
  return view;
}

void ControlView::CarryOver() {
  QWidget *widget = Widget();
  CarryOverOwn();
  if (carried_ && visible_ == control_.Visible && enabled_ == control_.Enabled &&
      foreColor_ == control_.ForeColor) {
    return;
  }
  const bool first = !carried_;
  carried_ = true;
  visible_ = control_.Visible;
  enabled_ = control_.Enabled;
  if (first || foreColor_ != control_.ForeColor) {
    foreColor_ = control_.ForeColor;
    QPalette palette = widget->palette();
    if (OwnColor()) palette.setColor(QPalette::WindowText, Convert(foreColor_));
    if (control_.HasBackColor) {
      for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Base, Convert(control_.BackColor));
        palette.setColor(group, QPalette::Text, Convert(foreColor_));
      }
    }
    widget->setPalette(palette);
  }
  widget->setEnabled(enabled_);
  widget->setVisible(visible_);
}
