#pragma once

// Pointer capture: while the object lives, the real pointer stays near one widget and only its motion is
// reported.

#include "platform/desktop/pointer_travel.h"

#include <QWidget>

#include <functional>
#include <memory>

class PointerHold {
public:
  /// Called for each motion, in units of the display: device pixels under X, the compositor's units under
  /// Wayland.
  using Moved = std::function<void(Vec2 motion)>;

  virtual ~PointerHold() = default;

  /// Whether it must be replaced because the mouse has changed.
  virtual bool Lost() const { return false; }
};

/// Captures the pointer in the way of the current display. The pointer must already be hidden.
std::unique_ptr<PointerHold> HoldPointer(QWidget &over, const PointerHold::Moved &moved);

/// Null if the program doesn't run on X.
std::unique_ptr<PointerHold> HoldPointerOnX(QWidget &over, const PointerHold::Moved &moved);

/// Null if the program doesn't run on Wayland, or the compositor doesn't support pointer constraints.
std::unique_ptr<PointerHold> HoldPointerOnWayland(QWidget &over, const PointerHold::Moved &moved);
