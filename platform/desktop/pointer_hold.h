#pragma once

// A hold on the real pointer: as long as it lives the pointer stays near one widget and tells its motion
// alone.

#include "platform/desktop/pointer_travel.h"

#include <QWidget>

#include <functional>
#include <memory>

class PointerHold {
public:
  /// Told of each motion, in what the display counts: device pixels under X, the compositor's units under
  /// Wayland.
  using Moved = std::function<void(Dots way)>;

  virtual ~PointerHold() = default;

  /// Whether another hold must take its place: the mouse isn't the one any more that it was made for.
  virtual bool Lost() const { return false; }
};

/// A hold by the means of the display that the program runs on. The pointer must be hidden already.
std::unique_ptr<PointerHold> HoldPointer(QWidget &over, const PointerHold::Moved &moved);

/// Null where X doesn't serve the program.
std::unique_ptr<PointerHold> HoldPointerOnX(QWidget &over, const PointerHold::Moved &moved);

/// Null where no Wayland compositor serves the program, or it lets nobody hold the pointer.
std::unique_ptr<PointerHold> HoldPointerOnWayland(QWidget &over, const PointerHold::Moved &moved);
