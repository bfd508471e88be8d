// The interactive controls: text boxes, buttons, check boxes and lists.

#include "platform/desktop/accessible.h"
#include "platform/desktop/painted_views.h"
#include "platform/desktop/typed_view.h"
#include "platform/plain_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionComboBox>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace {

/// A field: a control that is named by the label before it.
template <class Record, class QtWidget> class Field : public View<Record, QtWidget> {
public:
  using View<Record, QtWidget>::View;

  void SetLabel(QLabel &label) override {
    if constexpr (!std::is_same_v<QtWidget, QComboBox>) label.setBuddy(this->widget_);
    if (this->model_.AccessibleName.empty()) this->widget_->setAccessibleName(label.text());
  }
};

class TextBoxView : public Field<TextBox, TwoLineEdit> {
public:
  TextBoxView(DesktopMachine &machine, Window &window, TextBox &model, QWidget &parent)
      : Field(machine, window, model, parent) {
    widget_->setReadOnly(model.Locked);
    if (model.Locked) widget_->setFocusPolicy(Qt::NoFocus);
    if (model.MaxLength > 0) widget_->setMaxLength(model.MaxLength);
    QObject::connect(widget_, &QLineEdit::textEdited, [this](const QString &text) {
      // Pasted line breaks, which the box shows as blanks, must not count as Enter or as part of a name.
      const std::string line = PlainText(text.toStdString(), static_cast<std::size_t>(text.size()));
      Post([this, line] { model_.Text = shownText_ = line; });
    });
    QObject::connect(widget_, &QLineEdit::returnPressed, [this] {
      Post([this] {
        if (model_.KeyPress) model_.KeyPress(KeyCodes::Enter);
      });
    });
  }

  void TakeFocus() override {
    ControlView::TakeFocus();
    if (model_.SelLength > 0) widget_->setSelection(model_.SelStart, model_.SelLength);
  }

protected:
  void SyncOwn() override {
    if (shownText_ == model_.Text) return;
    shownText_ = model_.Text;
    widget_->setText(Text(model_.Text));
    widget_->setCursorPosition(0);
  }

  QString SpokenText() const override {
    return model_.Text.empty() ? QString() : widget_->accessibleName() + ": " + Text(model_.Text);
  }

private:
  std::string shownText_;
};

class ButtonView : public View<CommandButton, QPushButton> {
public:
  ButtonView(DesktopMachine &machine, Window &window, CommandButton &model, QWidget &parent)
      : View(machine, window, model, parent) {
    QObject::connect(widget_, &QPushButton::clicked, [this] { Press(); });
  }

  void ChooseMnemonic(QString &taken) override {
    for (const QChar letter : Text(model_.Caption).toUpper()) {
      if (!letter.isLetter() || taken.contains(letter)) continue;
      mnemonic_ = letter;
      taken += letter;
      return;
    }
  }

  void Fit() override {
    constexpr int Edge = 4; // pixels, on each side
    ShrinkFontUntil([&] {
      const auto words = widget_->fontMetrics().size(Qt::TextShowMnemonic, widget_->text());
      return words.width() + 2 * Edge <= widget_->width() && words.height() <= widget_->height();
    });
  }

  bool PressedBy(bool enter, bool escape) override {
    if (!widget_->isEnabled()) return false;
    if (!(enter && (widget_->hasFocus() || model_.Default)) && !(escape && model_.Cancel)) return false;
    Press();
    return true;
  }

protected:
  void SyncOwn() override {
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

  QChar mnemonic_; ///< underlined; Alt and this letter press the button
};

class CheckBoxView : public Field<CheckBox, QCheckBox> {
public:
  CheckBoxView(DesktopMachine &machine, Window &window, CheckBox &model, QWidget &parent)
      : Field(machine, window, model, parent) {
    QObject::connect(widget_, &QCheckBox::clicked, [this](bool ticked) {
      Post([this, ticked] {
        model_.Value = ticked ? 1 : 0;
        if (model_.Click) model_.Click();
      });
    });
  }

protected:
  void SyncOwn() override {
    if (shownValue_ == model_.Value) return;
    shownValue_ = model_.Value;
    widget_->setChecked(model_.Value != 0);
  }

private:
  int shownValue_ = -1;
};

/// A list with at most one selected row. When the list gets the focus or Ctrl deselects the row, Qt makes a
/// row current without selecting it, which the player can't see.
class RowList : public QListWidget {
public:
  using QListWidget::QListWidget;

  /// Shown in the middle while there are no rows.
  void SetEmptyText(const QString &text) {
    if (text == emptyText_) return;
    emptyText_ = text;
    setAccessibleDescription(text);
    viewport()->update();
  }

  int SelectedRow() const { return selectedItems().isEmpty() ? -1 : row(selectedItems().front()); }

protected:
  void focusInEvent(QFocusEvent *event) override {
    QListWidget::focusInEvent(event);
    if (SelectedRow() < 0) selectionModel()->clearCurrentIndex();
  }

  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                       const QEvent *event) const override {
    const auto command = QListWidget::selectionCommand(index, event);
    return command.testFlag(QItemSelectionModel::Deselect) ? QItemSelectionModel::NoUpdate : command;
  }

  void paintEvent(QPaintEvent *event) override {
    QListWidget::paintEvent(event);
    if (count() > 0) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    constexpr int Margin = 3; // pixels
    painter.drawText(viewport()->rect().adjusted(Margin, Margin, -Margin, -Margin),
                     Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
  }

private:
  QString emptyText_;
};

/// A list box or a drop-down list.
template <class Record, class QtWidget> class RowsView : public Field<Record, QtWidget> {
public:
  RowsView(DesktopMachine &machine, Window &window, Record &model, QWidget &parent)
      : Field<Record, QtWidget>(machine, window, model, parent) {
    const auto chosen = [this](int row) {
      if (filling_) return;
      this->Post([this, row] {
        this->model_.ListIndex = row;
        shownRow_ = row;
        if (this->model_.Click) this->model_.Click();
      });
    };
    if constexpr (std::is_same_v<QtWidget, RowList>) {
      QObject::connect(this->widget_, &QListWidget::itemSelectionChanged,
                       [this, chosen] { chosen(this->widget_->SelectedRow()); });
    } else {
      SetAccessibleRole(*this->widget_, QAccessible::ComboBox);
      QObject::connect(this->widget_, &QComboBox::currentIndexChanged, chosen);
    }
  }

  /// Shrinks the text so that every initial row of a drop-down list fits. A list box scrolls.
  void Fit() override {
    if constexpr (std::is_same_v<QtWidget, QComboBox>) {
      constexpr int Edge = 2; // pixels, on each side
      this->ShrinkFontUntil([&] {
        QStyleOptionComboBox option;
        option.initFrom(this->widget_);
        const QRect room = this->widget_->style()->subControlRect(
            QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this->widget_);
        return std::ranges::all_of(shownRows_, [&](const std::string &row) {
          return this->widget_->fontMetrics().horizontalAdvance(Text(row)) + 2 * Edge <= room.width();
        });
      });
    }
  }

protected:
  void SyncOwn() override {
    filling_ = true;
    if constexpr (std::is_same_v<QtWidget, RowList>)
      this->widget_->SetEmptyText(Text(this->model_.EmptyText));
    if (shownRows_ != this->model_.List) {
      shownRows_ = this->model_.List;
      this->widget_->clear();
      for (const std::string &row : shownRows_) this->widget_->addItem(Text(row));
      shownRow_ = -2;
    }
    if (shownRow_ != this->model_.ListIndex) {
      shownRow_ = this->model_.ListIndex;
      if constexpr (std::is_same_v<QtWidget, RowList>) {
        this->widget_->setCurrentRow(shownRow_);
      } else {
        this->widget_->setCurrentIndex(shownRow_);
      }
    }
    filling_ = false;
  }

  QString SpokenText() const override {
    const auto row = static_cast<std::size_t>(this->model_.ListIndex);
    return row < this->model_.List.size() ? Text(this->model_.List[row]) : QString();
  }

private:
  std::vector<std::string> shownRows_;
  int shownRow_ = -2;
  bool filling_ = false;
};

} // namespace

std::unique_ptr<ControlView> ViewMaker::MakeInput(Control &control) const {
  if (auto view = Try<TextBox, TextBoxView>(control)) return view;
  if (auto view = Try<CommandButton, ButtonView>(control)) return view;
  if (auto view = Try<CheckBox, CheckBoxView>(control)) return view;
  if (auto view = Try<ListBox, RowsView<ListBox, RowList>>(control)) return view;
  return Try<ComboBox, RowsView<ComboBox, QComboBox>>(control);
}
