#pragma once

// Properties of the display, queried before Qt starts, because Qt must know the platform and the scale from
// the beginning.

#include <QRect>

#include <optional>

struct DisplayFacts {
  QRect freeArea;         ///< area for windows on the primary screen, device pixels
  double ownFactor = 1.0; ///< scale factor of the desktop
  int screens = 1;
  bool holdsPointer = true;  ///< whether a program can capture the pointer
  bool scalesItself = false; ///< whether the display itself scales windows by its factor
};

/// Queries the X display; nothing if there is none.
std::optional<DisplayFacts> QueryX();

/// Queries the Wayland compositor; nothing if there is none or the game was built without Wayland.
std::optional<DisplayFacts> QueryWayland();

/// Copies Qt's option "-display" to the environment, where the query and the test of OpenGL find it too.
void TakeDisplayOption(int argc, char **argv);

/// Chooses Wayland if the compositor lets a program capture the pointer, else X. Chooses the scale
/// (`WindowScale`) of all windows, fonts and boxes. What the user has chosen in Qt's environment
/// variables is kept; an unusable scale is dropped with a message on standard error. Must be called before
/// Qt starts.
void ChooseDisplay();
