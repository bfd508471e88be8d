#pragma once

#include "platform/machine.h"

/// A window that shows a single image; a click anywhere closes it.
class PictureWindow : public Window {
public:
  /// @param name    also the name of the image file
  /// @param width,height  of the client area, twips
  PictureWindow(Machine &machine, const std::string &name, const std::string &caption, int width, int height);

  /// Shows the window and pumps until it is closed. Clicks in the first 400 ms are ignored: they were meant
  /// for whatever was there before.
  void ShowModal();

private:
  Machine &machine_;
  std::int32_t clicksFrom_ = 0; ///< clock from which a click closes it, ms
};
