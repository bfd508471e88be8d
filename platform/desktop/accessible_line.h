#pragma once

// A line of text for screen readers. The toolkit's own can search for a word or a sentence without end when
// the cursor is behind the last letter.

#include <QAccessibleWidget>
#include <QLineEdit>

#include <utility>

class AccessibleLine : public QAccessibleWidget,
                       public QAccessibleTextInterface,
                       public QAccessibleEditableTextInterface {
public:
  explicit AccessibleLine(QLineEdit *line)
      : QAccessibleWidget(line, QAccessible::EditableText), line_(*line) {}

  void *interface_cast(QAccessible::InterfaceType type) override;
  QString text(QAccessible::Text which) const override;
  void setText(QAccessible::Text which, const QString &text) override;
  QAccessible::State state() const override;

  // Offsets count characters; -1 is the end of the text and -2 the cursor, where a part is asked for.
  int characterCount() const override { return static_cast<int>(line_.text().size()); }
  QString text(int start, int end) const override { return line_.text().mid(start, end - start); }
  QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int *start,
                           int *end) const override {
    return Part(offset, type, -1, start, end);
  }
  QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int *start, int *end) const override {
    return Part(offset, type, 0, start, end);
  }
  QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int *start,
                          int *end) const override {
    return Part(offset, type, 1, start, end);
  }
  int cursorPosition() const override { return line_.cursorPosition(); }
  void setCursorPosition(int position) override { line_.setCursorPosition(position); }
  int selectionCount() const override { return line_.hasSelectedText() ? 1 : 0; }
  void selection(int index, int *start, int *end) const override;
  void addSelection(int start, int end) override { setSelection(0, start, end); }
  void setSelection(int, int start, int end) override { line_.setSelection(start, end - start); }
  void removeSelection(int) override { line_.deselect(); }
  QRect characterRect(int offset) const override;
  int offsetAtPoint(const QPoint &point) const override;
  QString attributes(int offset, int *start, int *end) const override;
  void scrollToSubstring(int start, int) override { line_.setCursorPosition(start); }

  void deleteText(int start, int end) override { replaceText(start, end, {}); }
  void insertText(int offset, const QString &text) override { replaceText(offset, offset, text); }
  void replaceText(int start, int end, const QString &text) override;

private:
  QString Part(int offset, QAccessible::TextBoundaryType type, int ahead, int *start, int *end) const;

  QLineEdit &line_;
};
