#pragma once

// How large the game's windows are on a screen. All of them share one scale, so it is that of the largest,
// the play window.

#include <QSizeF>

/// Device pixels for each pixel of the design: the screen's own factor, or the largest of 1, 1.5, 2, 2.5, ...
/// at which the play window with its frame fits into nine tenths of the free area, whichever is larger.
/// @param freeArea   where windows can stand, device pixels
/// @param ownFactor  device pixels that the desktop counts as one, at least 1
double WindowScale(QSizeF freeArea, double ownFactor);
