#pragma once

#include "platform/machine.h"

/// A window whose whole content is its background picture; a click anywhere unloads it.
class PictureWindow : public Window {
public:
  /// @param name    also of the picture's file
  /// @param width,height  of the client area, twips
  PictureWindow(Machine &machine, const std::string &name, const std::string &caption, int width, int height);

  /// Shows it and pumps until it has been closed. Clicks of its first 400 ms were meant for what stood there
  /// before, and don't count.
  void ShowModal();

private:
  Machine &machine_;
  std::int32_t clicksFrom_ = 0; ///< clock from which on a click closes it, ms
};
