#pragma once

// The real machine on the game as it was built, and what is seen on its windows, for tests.

#include "platform/desktop/desktop_machine.h"

#include <QColor>

#include <algorithm>
#include <cmath>

class GameMachine : public DesktopMachine {
public:
  using DesktopMachine::DesktopMachine;
  std::filesystem::path AppPath() const override { return SNAPWEDGE_GAME_DIR; }

  /// One serves all tests, and is never taken down: Qt's own statics, which it would need for that, go first.
  static GameMachine &Get() {
    static int count = 1;
    static char name[] = "test";
    static char *arguments[] = {name, nullptr};
    static auto *machine = new GameMachine(count, arguments);
    return *machine;
  }
};

/// Of two colours, as the accessibility guidelines for the web define it, 1 to 21.
inline double Contrast(const QColor &one, const QColor &other) {
  const auto luminance = [](const QColor &color) {
    const auto linear = [](double value) {
      return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
  };
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

/// The window of the screen that shows a record of that name; null if there is none.
inline QWidget *ShownWindow(const std::string &name) {
  for (QWidget *window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->objectName().toStdString() == name) return window;
  }
  return nullptr;
}
