#pragma once

// For programs that show the game's windows: the desktop machine with the files of the built game.

#include "platform/desktop/desktop_machine.h"
#include "tools/game_directory.h"

#include <QApplication>
#include <QWidget>

#include <string>

class BuiltGameMachine : public DesktopMachine {
public:
  using DesktopMachine::DesktopMachine;
  std::filesystem::path AppPath() const override { return GameDirectory(); }
};

/// The visible window with that name, or null.
inline QWidget *ShownWindow(const std::string &name) {
  for (QWidget *window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->objectName().toStdString() == name) return window;
  }
  return nullptr;
}
