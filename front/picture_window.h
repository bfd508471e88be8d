#pragma once

#include "platform/machine.h"

/// A window whose whole content is its background picture; a click anywhere unloads it.
class PictureWindow : public Window {
public:
  /// @param name    also of the picture's file
  /// @param width,height  of the client area, twips
  PictureWindow(Machine &machine, const std::string &name, const std::string &caption, int width, int height);
};
