// Pointer capture under Wayland: the compositor locks the pointer in place and reports its motion.

#include "platform/desktop/pointer_hold.h"

#include "pointer-constraints-unstable-v1-client-protocol.h"
#include "relative-pointer-unstable-v1-client-protocol.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformwindow.h>

#include <wayland-client.h>

#include <string_view>
#include <utility>

namespace {

template <class Object> using Owned = std::unique_ptr<Object, void (*)(Object *)>;

/// The interfaces for locking the pointer. Lives as long as the process.
struct Offers {
  zwp_pointer_constraints_v1 *constraints = nullptr;
  zwp_relative_pointer_manager_v1 *motions = nullptr;
};

const wl_registry_listener RegistryListener = {
    .global =
        [](void *data, wl_registry *registry, std::uint32_t number, const char *interface, std::uint32_t) {
          Offers &offers = *static_cast<Offers *>(data);
          const std::string_view name = interface;
          if (name == zwp_pointer_constraints_v1_interface.name) {
            offers.constraints = static_cast<zwp_pointer_constraints_v1 *>(
                wl_registry_bind(registry, number, &zwp_pointer_constraints_v1_interface, 1));
          } else if (name == zwp_relative_pointer_manager_v1_interface.name) {
            offers.motions = static_cast<zwp_relative_pointer_manager_v1 *>(
                wl_registry_bind(registry, number, &zwp_relative_pointer_manager_v1_interface, 1));
          }
        },
    .global_remove = [](void *, wl_registry *, std::uint32_t) {},
};

/// Uses its own event queue, because Qt dispatches the default one; the bound objects then use the default
/// queue.
Offers AskFor(wl_display *compositor) {
  Offers offers;
  wl_event_queue *queue = wl_display_create_queue(compositor);
  auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(compositor));
  wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), queue);
  wl_registry *registry = wl_display_get_registry(wrapper);
  wl_proxy_wrapper_destroy(wrapper);
  wl_registry_add_listener(registry, &RegistryListener, &offers);
  wl_display_roundtrip_queue(compositor, queue);
  for (void *bound : {static_cast<void *>(offers.constraints), static_cast<void *>(offers.motions)})
    if (bound) wl_proxy_set_queue(static_cast<wl_proxy *>(bound), nullptr);
  wl_registry_destroy(registry);
  wl_event_queue_destroy(queue);
  return offers;
}

template <class Object> Object *Native(const char *name) {
  return static_cast<Object *>(
      QGuiApplication::platformNativeInterface()->nativeResourceForIntegration(name));
}

/// Qt creates a new one when a mouse is plugged in or removed.
wl_pointer *QtsPointer() { return Native<wl_pointer>("wl_pointer"); }

/// The content of the window on its surface. If Qt draws the frame, it is part of the surface, and a pointer
/// locked over it would click there.
Owned<wl_region> ContentOf(const QPlatformWindow &window) {
  Owned<wl_region> region(wl_compositor_create_region(Native<wl_compositor>("compositor")),
                          wl_region_destroy);
  const QMargins frame = window.frameMargins();
  const QSize size = window.geometry().size();
  wl_region_add(region.get(), frame.left(), frame.top(), size.width(), size.height());
  return region;
}

class WaylandHold : public PointerHold, QObject {
public:
  /// @param pointer  null if there is no mouse
  WaylandHold(QWidget &over, const Offers &offers, wl_surface *surface, wl_pointer *pointer, Moved moved)
      : over_(over), moved_(std::move(moved)), pointer_(pointer) {
    if (!pointer) return;
    motions_.reset(zwp_relative_pointer_manager_v1_get_relative_pointer(offers.motions, pointer));
    static constexpr zwp_relative_pointer_v1_listener Listener = {.relative_motion = Motion};
    zwp_relative_pointer_v1_add_listener(motions_.get(), &Listener, this);
    // Persistent: the compositor locks again whenever the window gets the pointer.
    const auto content = ContentOf(*over.window()->windowHandle()->handle());
    lock_.reset(zwp_pointer_constraints_v1_lock_pointer(offers.constraints, surface, pointer, content.get(),
                                                        ZWP_POINTER_CONSTRAINTS_V1_LIFETIME_PERSISTENT));
    qGuiApp->installEventFilter(this);
  }

  bool Lost() const override { return pointer_ != QtsPointer(); }

private:
  /// Sends the presses to the widget wherever in its window the pointer is locked. Qt's grab only works for
  /// menus here.
  bool eventFilter(QObject *receiver, QEvent *event) override {
    const auto type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonRelease &&
        type != QEvent::MouseButtonDblClick)
      return false;
    const auto *widget = qobject_cast<QWidget *>(receiver);
    if (!widget || widget == &over_ || widget->window() != over_.window()) return false;
    const auto &press = *static_cast<QMouseEvent *>(event);
    const QPointF place = press.globalPosition();
    QMouseEvent moved(type, over_.mapFromGlobal(place), place, press.button(), press.buttons(),
                      press.modifiers(), press.pointingDevice());
    QCoreApplication::sendEvent(&over_, &moved);
    return true;
  }

  static void Motion(void *hold, zwp_relative_pointer_v1 *, std::uint32_t, std::uint32_t, wl_fixed_t right,
                     wl_fixed_t down, wl_fixed_t, wl_fixed_t) {
    static_cast<WaylandHold *>(hold)->moved_({wl_fixed_to_double(right), wl_fixed_to_double(down)});
  }

  QWidget &over_;
  Moved moved_;
  wl_pointer *pointer_;
  Owned<zwp_relative_pointer_v1> motions_{nullptr, zwp_relative_pointer_v1_destroy};
  Owned<zwp_locked_pointer_v1> lock_{nullptr, zwp_locked_pointer_v1_destroy};
};

} // namespace

std::unique_ptr<PointerHold> HoldPointerOnWayland(QWidget &over, const PointerHold::Moved &moved) {
  if (!QGuiApplication::platformName().startsWith("wayland")) return nullptr;
  auto *native = QGuiApplication::platformNativeInterface();
  auto *compositor = Native<wl_display>("wl_display");
  auto *surface =
      static_cast<wl_surface *>(native->nativeResourceForWindow("surface", over.window()->windowHandle()));
  if (!compositor || !surface) return nullptr;
  static const Offers offers = AskFor(compositor);
  if (!offers.constraints || !offers.motions) return nullptr;
  return std::make_unique<WaylandHold>(over, offers, surface, QtsPointer(), moved);
}
