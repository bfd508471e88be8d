#pragma once

// For tests of windows: the desktop machine with the built game's files, and helpers to look at the screen.

#include "tools/built_game.h"

#include <QColor>

#include <algorithm>
#include <cmath>

/// The one application or machine of all tests. It is never destroyed, because Qt's statics are destroyed
/// before it. Started with "-reverse", which must change nothing.
template <class T> T &TheOnly() {
  static int count = 2;
  static char name[] = "test", mirrored[] = "-reverse";
  static char *arguments[] = {name, mirrored, nullptr};
  static auto *object = new T(count, arguments);
  return *object;
}

class GameMachine : public BuiltGameMachine {
public:
  using BuiltGameMachine::BuiltGameMachine;

  static GameMachine &Get() { return TheOnly<GameMachine>(); }

  std::shared_ptr<void> Watch(int socket) override {
    auto watch = DesktopMachine::Watch(socket);
    Watches.push_back(watch);
    return watch;
  }
  std::vector<std::weak_ptr<void>> Watches; ///< all that there have been
};

/// The contrast ratio of two colours, 1 to 21, as the Web Content Accessibility Guidelines define it.
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

/// The control of that name in any window, or null.
inline QWidget *WidgetOf(const char *name) {
  for (QWidget *window : QApplication::topLevelWidgets()) {
    if (auto *widget = window->findChild<QWidget *>(name)) return widget;
  }
  return nullptr;
}

inline void PumpFor(DesktopMachine &machine, std::int32_t milliseconds) {
  const std::int32_t end = machine.ClockIn(milliseconds);
  while (!machine.ClockReached(end)) machine.WaitUntil(end);
}
