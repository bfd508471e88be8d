#pragma once

// What the display is like, asked before Qt starts: from its first moment on Qt has to know which display it
// is to use, and by which scale it multiplies everything.

#include <QRect>

#include <optional>

struct DisplayFacts {
  QRect freeArea;         ///< where windows can stand on the primary screen, device pixels
  double ownFactor = 1.0; ///< device pixels that the desktop counts as one
  int screens = 1;
  bool holdsPointer = true;  ///< whether a program can hold the pointer
  bool scalesItself = false; ///< whether the display itself multiplies by its factor what Qt makes
};

/// What the X display tells, nothing if none answers.
std::optional<DisplayFacts> AskX();

/// What the Wayland compositor tells, nothing if none answers or the game was built without Wayland.
std::optional<DisplayFacts> AskWayland();

/// Chooses Wayland where the compositor lets a program hold the pointer, else X, and the game's scale
/// (`WindowScale`) for all windows, fonts and boxes. What the user has set for Qt stays as it is. To be
/// called before Qt starts.
void ChooseDisplay();
