// The display-only controls: labels, images, the document, the meter, lines and shapes.

#include "platform/desktop/files.h"
#include "platform/desktop/painted_views.h"
#include "platform/desktop/typed_view.h"
#include "platform/desktop/window_view.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBrowser>

#include <functional>
#include <optional>

namespace {

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
    // A click on a label goes to whatever is under it.
    widget_->setAttribute(Qt::WA_TransparentForMouseEvents);
    if (model.Border) {
      constexpr int Margin = 1; // pixel
      widget_->setFrameStyle(QFrame::Box | QFrame::Plain);
      widget_->setAutoFillBackground(true);
      widget_->setMargin(Margin);
      widget_->setIndent(0); // leaves room for nine lines of text
    }
  }

  void Fit() override {
    if (!full_) full_ = widget_->font();
    widget_->setFont(*full_);
    ShrinkFontUntil([&] {
      return model_.WordWrap ? widget_->heightForWidth(widget_->width()) <= widget_->height()
                             : widget_->sizeHint().width() <= widget_->width();
    });
  }

protected:
  void SyncOwn() override {
    if (widget_->text() == Text(model_.Caption)) return;
    widget_->setText(Text(model_.Caption));
    if (full_) Fit();
  }
  QString SpokenText() const override {
    return Text(model_.AccessibleName.empty() ? model_.Caption : model_.AccessibleName);
  }
  /// On the toolkit's background, which is dark on some desktops, the toolkit chooses a readable colour.
  bool UsesOwnColor() const override {
    return !model_.Border && (window_.HasBackColor || !window_.Picture.empty());
  }

private:
  std::optional<QFont> full_; ///< the font of the label before shrinking
};

class PictureView : public View<PictureBox, QLabel> {
public:
  PictureView(DesktopMachine &machine, Window &window, PictureBox &model, QWidget &parent)
      : View(machine, window, model, parent) {
    widget_->setAutoFillBackground(true);
    widget_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    widget_->setPixmap(LoadPicture(machine, parent, model.Picture));
    widget_->setAccessibleName(LoadPictureText(machine.AppPath(), model.Picture));
    // The box is as large as its image, because a larger place would show an empty edge.
    widget_->resize(widget_->pixmap().deviceIndependentSize().toSize());
  }

protected:
  void SyncOwn() override {}
};

/// Shows a document alone: an image or a style sheet in it isn't loaded.
class Browser : public QTextBrowser {
public:
  using QTextBrowser::QTextBrowser;
  QVariant loadResource(int type, const QUrl &name) override {
    return type == QTextDocument::HtmlResource ? QTextBrowser::loadResource(type, name) : QVariant();
  }
};

/// A document that scrolls by wheel, bar and keys, although a button has the keyboard focus.
class DocumentView : public View<RichTextBox, Browser> {
public:
  DocumentView(DesktopMachine &machine, Window &window, RichTextBox &model, QWidget &parent)
      : View(machine, window, model, parent) {
    const auto file = machine.AppPath() / model.Document;
    CheckDocument(file);
    widget_->setSource(QUrl::fromLocalFile(Text(file.string())));
    widget_->setTextInteractionFlags(Qt::NoTextInteraction);
    widget_->setFocusPolicy(Qt::NoFocus);
    // A button with the focus takes these two keys, so `ScrollBy` doesn't get them.
    for (const auto &[key, action] : {std::pair{Qt::Key_Up, QAbstractSlider::SliderSingleStepSub},
                                      {Qt::Key_Down, QAbstractSlider::SliderSingleStepAdd}}) {
      new QShortcut(key, &parent, // owned by the window
                    [bar = widget_->verticalScrollBar(), step = action] { bar->triggerAction(step); });
    }
    // The document never gets the focus, so screen readers get its text with the window.
    parent.setAccessibleDescription(widget_->toPlainText());
    widget_->viewport()->installEventFilter(&filter_);
    filter_.pressed = [this] {
      Post([this] {
        if (model_.GotFocus) model_.GotFocus();
      });
    };
  }

  void ScrollBy(QKeyEvent &event) override { widget_->verticalScrollBar()->event(&event); }

protected:
  void SyncOwn() override {}

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
  MeterView(DesktopMachine &machine, Window &window, ProgressBar &model, QWidget &parent)
      : View(machine, window, model, parent) {
    widget_->SetBarWidth(model.Place.Width);
  }

  Rectangle Extent() const override {
    Rectangle extent = model_.Place;
    extent.Width += model_.ScaleWidth;
    return extent;
  }

protected:
  void SyncOwn() override {
    const auto share = [&](float value) { return (value - model_.Min) / (model_.Max - model_.Min); };
    MeterWidget::Face face{share(model_.Value), model_.Scale, model_.Ghost, share(model_.CapFrom),
                           model_.CapLit};
    for (ProgressBar::Mark &mark : face.Scale) mark.Value = share(mark.Value);
    if (face.Ghost) face.Ghost = share(*face.Ghost);
    widget_->Show(face);
  }
};

class LineView : public View<Line, LineWidget> {
public:
  using View::View;

protected:
  void SyncOwn() override {}
  bool UsesOwnColor() const override { return true; }
};

class ShapeView : public View<Shape, ShapeWidget> {
public:
  using View::View;

protected:
  void SyncOwn() override {}
  bool UsesOwnColor() const override { return true; }
};

} // namespace

std::unique_ptr<ControlView> ViewMaker::MakeShown(Control &control) const {
  if (auto view = Try<Label, LabelView>(control)) return view;
  if (auto view = Try<PictureBox, PictureView>(control)) return view;
  if (auto view = Try<RichTextBox, DocumentView>(control)) return view;
  if (auto view = Try<ProgressBar, MeterView>(control)) return view;
  if (auto view = Try<Line, LineView>(control)) return view;
  return Try<Shape, ShapeView>(control);
}
