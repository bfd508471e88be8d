#pragma once

// Widgets that the toolkit doesn't have: the power meter, a text box of two lines, a line, an empty
// rectangle.

#include "platform/controls.h"

#include <QLineEdit>
#include <QWidget>

#include <optional>
#include <vector>

/// A vertical meter that fills from the bottom, green to yellow to red, with its scale on the right.
class MeterWidget : public QWidget {
public:
  explicit MeterWidget(QWidget *parent);

  /// The displayed state. All values are fractions of the full meter, 0 to 1.
  struct Face {
    float Level = 0.0f;
    std::vector<ProgressBar::Mark> Scale;
    std::optional<float> Ghost;
    float CapFrom = 1.0f; ///< beginning of the red cap
    bool CapLit = false;
    bool operator==(const Face &) const = default;
  };

  void SetBarWidth(int pixels) { barWidth_ = pixels; } ///< the rest of the width is for the scale
  void Show(const Face &face);
  int Percent() const; ///< the level, 0 to 100

protected:
  void paintEvent(QPaintEvent *event) override;

private:
  void PaintBar(QPainter &painter) const;
  void PaintScale(QPainter &painter) const;
  QRect Inside() const;          ///< the bar without its border
  int LevelY(float share) const; ///< top edge of a level

  int barWidth_ = 0;
  Face face_;
};

/// A text box whose text, if it can't be edited and is too long for one line, takes two. It can't be
/// scrolled: the play window captures the pointer. What two lines of the smallest font don't hold ends with
/// an ellipsis.
class TwoLineEdit : public QLineEdit {
public:
  using QLineEdit::QLineEdit;

protected:
  void paintEvent(QPaintEvent *event) override;
};

class LineWidget : public QWidget {
public:
  explicit LineWidget(QWidget *parent);

protected:
  void paintEvent(QPaintEvent *event) override;
};

class ShapeWidget : public QWidget {
public:
  explicit ShapeWidget(QWidget *parent);

protected:
  void paintEvent(QPaintEvent *event) override;
};
