// Stubs for builds without Wayland.

#include "platform/desktop/display.h"
#include "platform/desktop/pointer_hold.h"

std::optional<DisplayFacts> QueryWayland() { return std::nullopt; }

std::unique_ptr<PointerHold> HoldPointerOnWayland(QWidget &, const PointerHold::Moved &) { return nullptr; }
