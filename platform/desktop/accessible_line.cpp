#include "platform/desktop/accessible_line.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <vector>

namespace {

/// The starts of the parts of a text, and its end.
std::vector<int> Boundaries(const QString &text, QAccessible::TextBoundaryType type) {
  std::vector<int> boundaries{0};
  const auto size = static_cast<int>(text.size());
  const auto kind = type == QAccessible::CharBoundary       ? QTextBoundaryFinder::Grapheme
                    : type == QAccessible::SentenceBoundary ? QTextBoundaryFinder::Sentence
                                                            : QTextBoundaryFinder::Word;
  QTextBoundaryFinder finder(kind, text);
  const bool whole = type == QAccessible::LineBoundary || type == QAccessible::ParagraphBoundary ||
                     type == QAccessible::NoBoundary;
  for (auto at = whole ? -1 : finder.toNextBoundary(); at >= 0 && at < size; at = finder.toNextBoundary()) {
    if (finder.boundaryReasons() & QTextBoundaryFinder::StartOfItem)
      boundaries.push_back(static_cast<int>(at));
  }
  boundaries.push_back(size);
  return boundaries;
}

} // namespace

void *AccessibleLine::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface *>(this);
  if (type == QAccessible::EditableTextInterface && !line_.isReadOnly())
    return static_cast<QAccessibleEditableTextInterface *>(this);
  return QAccessibleWidget::interface_cast(type);
}

QString AccessibleLine::text(QAccessible::Text which) const {
  return which == QAccessible::Value ? line_.text() : QAccessibleWidget::text(which);
}

void AccessibleLine::setText(QAccessible::Text which, const QString &text) {
  if (which == QAccessible::Value) replaceText(0, characterCount(), text);
}

QAccessible::State AccessibleLine::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.editable = !line_.isReadOnly();
  state.readOnly = line_.isReadOnly();
  state.selectableText = true;
  return state;
}

void AccessibleLine::selection(int, int *start, int *end) const {
  *start = std::max(line_.selectionStart(), 0);
  *end = std::max(line_.selectionEnd(), 0);
}

/// QLineEdit has no public way to get a letter's place, so that of the box is returned.
QRect AccessibleLine::characterRect(int offset) const {
  return offset >= 0 && offset < characterCount() ? rect() : QRect();
}

int AccessibleLine::offsetAtPoint(const QPoint &point) const {
  return rect().contains(point) ? line_.cursorPositionAt(line_.mapFromGlobal(point)) : -1;
}

/// Every letter looks the same, so no attributes are reported.
QString AccessibleLine::attributes(int, int *start, int *end) const {
  *start = 0;
  *end = characterCount();
  return {};
}

/// Goes through the box's own operations, which obey its greatest length and tell the game.
void AccessibleLine::replaceText(int start, int end, const QString &text) {
  if (line_.isReadOnly()) return;
  line_.setSelection(start, end - start);
  line_.insert(text);
}

/// @param ahead  0 for the part at the offset, -1 for the one before it, 1 for the one behind it
/// @returns the part of the text; empty if there is none, with offsets of -1
QString AccessibleLine::Part(int offset, QAccessible::TextBoundaryType type, int ahead, int *start,
                             int *end) const {
  *start = *end = -1;
  const QString text = line_.text();
  const auto size = static_cast<int>(text.size());
  if (offset == -1) offset = size;
  if (offset == -2) offset = line_.cursorPosition();
  if (text.isEmpty() || offset < 0 || offset > size) return {};
  const std::vector<int> boundaries = Boundaries(text, type);
  // There is no letter behind the last one, but the last word, sentence or line is at that offset too.
  const int at = type == QAccessible::CharBoundary ? offset : std::min(offset, size - 1);
  const auto next = std::ranges::upper_bound(boundaries, at);
  const auto part = next - boundaries.begin() - 1 + ahead;
  if (part < 0 || part + 1 >= std::ssize(boundaries)) return {};
  *start = boundaries[static_cast<std::size_t>(part)];
  *end = boundaries[static_cast<std::size_t>(part) + 1];
  return text.mid(*start, *end - *start);
}
