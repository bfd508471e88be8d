#pragma once

// What the display is like, asked before Qt starts: from its first moment on Qt has to know by which scale it
// multiplies everything.

/// Has Qt show all windows, fonts and boxes at the game's scale (`WindowScale`). Leaves everything as it is
/// where the user has set a scale for Qt, or where no display tells its size.
void ChooseScale();
