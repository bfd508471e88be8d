// Queries a Wayland compositor.

#include "platform/desktop/display.h"

#include "pointer-constraints-unstable-v1-client-protocol.h"
#include "relative-pointer-unstable-v1-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"

#include <poll.h>
#include <wayland-client.h>

#include <memory>
#include <string_view>

namespace {

template <class Object> using Owned = std::unique_ptr<Object, void (*)(Object *)>;

/// The properties received so far, of the first screen.
struct Answers {
  bool constrains = false, relativeMotion = false;
  Owned<wl_output> screen{nullptr, wl_output_destroy};
  Owned<zxdg_output_manager_v1> outputManager{nullptr, zxdg_output_manager_v1_destroy};
  QSize pixels;        ///< of the mode
  bool turned = false; ///< whether the screen is rotated
  int factor = 1;      ///< integer scale for programs, rounded up from that of the screen
  QSize logicalSize;   ///< of the screen; empty if unknown
};

Answers &Of(void *data) { return *static_cast<Answers *>(data); }

const wl_output_listener ScreenListener = {
    .geometry = [](void *data, wl_output *, int, int, int, int, int, const char *, const char *,
                   int transform) { Of(data).turned = transform % 2 != 0; },
    .mode =
        [](void *data, wl_output *, std::uint32_t flags, int width, int height, int) {
          if (flags & WL_OUTPUT_MODE_CURRENT) Of(data).pixels = {width, height};
        },
    .done = [](void *, wl_output *) {},
    .scale = [](void *data, wl_output *, int factor) { Of(data).factor = factor; },
    .name = [](void *, wl_output *, const char *) {},
    .description = [](void *, wl_output *, const char *) {},
};

const zxdg_output_v1_listener SizeListener = {
    .logical_position = [](void *, zxdg_output_v1 *, int, int) {},
    .logical_size =
        [](void *data, zxdg_output_v1 *, int width, int height) {
          Of(data).logicalSize = {width, height};
        },
    .done = [](void *, zxdg_output_v1 *) {},
    .name = [](void *, zxdg_output_v1 *, const char *) {},
    .description = [](void *, zxdg_output_v1 *, const char *) {},
};

const wl_registry_listener OutputsListener = {
    .global =
        [](void *data, wl_registry *registry, std::uint32_t number, const char *interface,
           std::uint32_t version) {
          Answers &answers = Of(data);
          const std::string_view name = interface;
          constexpr std::uint32_t WithScale = 2;
          if (name == zwp_pointer_constraints_v1_interface.name) {
            answers.constrains = true;
          } else if (name == zwp_relative_pointer_manager_v1_interface.name) {
            answers.relativeMotion = true;
          } else if (name == wl_output_interface.name && version >= WithScale && !answers.screen) {
            answers.screen.reset(static_cast<wl_output *>(
                wl_registry_bind(registry, number, &wl_output_interface, WithScale)));
            wl_output_add_listener(answers.screen.get(), &ScreenListener, data);
          } else if (name == zxdg_output_manager_v1_interface.name) {
            answers.outputManager.reset(static_cast<zxdg_output_manager_v1 *>(
                wl_registry_bind(registry, number, &zxdg_output_manager_v1_interface, 1)));
          }
        },
    .global_remove = [](void *, wl_registry *, std::uint32_t) {},
};

const wl_callback_listener DoneListener = {
    .done = [](void *data, wl_callback *, std::uint32_t) { *static_cast<bool *>(data) = true; }};

/// Waits until the compositor has handled all requests. In contrast to `wl_display_roundtrip` it gives up on
/// one that doesn't answer.
/// @returns whether it has
bool Roundtrip(wl_display *compositor) {
  constexpr int PatienceMs = 1000;
  bool done = false;
  const Owned<wl_callback> sync(wl_display_sync(compositor), wl_callback_destroy);
  wl_callback_add_listener(sync.get(), &DoneListener, &done);
  while (!done) {
    while (wl_display_prepare_read(compositor) != 0) {
      if (wl_display_dispatch_pending(compositor) < 0) return false;
    }
    wl_display_flush(compositor);
    pollfd socket{wl_display_get_fd(compositor), POLLIN, 0};
    if (done || poll(&socket, 1, PatienceMs) <= 0) {
      wl_display_cancel_read(compositor);
      break;
    }
    if (wl_display_read_events(compositor) < 0 || wl_display_dispatch_pending(compositor) < 0) return false;
  }
  return done;
}

} // namespace

std::optional<DisplayFacts> QueryWayland() {
  const Owned<wl_display> compositor(wl_display_connect(nullptr), wl_display_disconnect);
  if (!compositor) return std::nullopt;
  Answers answers;
  const Owned<wl_registry> registry(wl_display_get_registry(compositor.get()), wl_registry_destroy);
  wl_registry_add_listener(registry.get(), &OutputsListener, &answers);
  if (!Roundtrip(compositor.get())) return std::nullopt;
  Owned<zxdg_output_v1> size(nullptr, zxdg_output_v1_destroy);
  if (answers.screen && answers.outputManager) {
    size.reset(zxdg_output_manager_v1_get_xdg_output(answers.outputManager.get(), answers.screen.get()));
    zxdg_output_v1_add_listener(size.get(), &SizeListener, &answers);
  }
  if (!Roundtrip(compositor.get()) || answers.pixels.isEmpty()) return std::nullopt;

  DisplayFacts display;
  const QSize pixels = answers.turned ? answers.pixels.transposed() : answers.pixels;
  display.freeArea = QRect(QPoint(), pixels);
  display.ownFactor =
      answers.logicalSize.isEmpty() ? answers.factor : double(pixels.width()) / answers.logicalSize.width();
  display.holdsPointer = answers.constrains && answers.relativeMotion;
  display.scalesItself = true;
  return display;
}
