#pragma once

/// Moves the mouse of the display, as a hand does: by so many device pixels from wherever the pointer is.
void MoveHand(int right, int down);
