#pragma once

/// Moves the mouse of the display by an offset in device pixels.
void MoveHand(int right, int down);
