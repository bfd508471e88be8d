#pragma once

// The scale of the windows. All share the scale of the largest one, the play window.

#include <QSizeF>

/// Device pixels per design pixel: the larger of the screen's own factor and the largest of 1, 1.5, 2, 2.5,
/// ... at which the play window with its frame fits into nine tenths of the free area. An own factor at which
/// the window would be larger than the free area is lowered to a multiple of 0.25, at least to 1.
/// @param freeArea   area for windows, device pixels
/// @param ownFactor  scale factor of the desktop, at least 1
double WindowScale(QSizeF freeArea, double ownFactor);
