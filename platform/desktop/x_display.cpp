// Queries an X display.

#include "platform/desktop/display.h"
#include "platform/desktop/x_reply.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr double DotsPerInch = 96.0; ///< at a factor of 1

XReply<xcb_get_property_reply_t> Property(xcb_connection_t *x, xcb_window_t root, xcb_atom_t name,
                                          xcb_atom_t type) {
  constexpr std::uint32_t Longest = 1 << 16; // words
  return Own(xcb_get_property_reply(x, xcb_get_property(x, 0, root, name, type, 0, Longest), nullptr));
}

/// Desktops store the user's scale factor in the resources of the display.
double OwnFactor(xcb_connection_t *x, xcb_window_t root) {
  constexpr std::string_view Name = "\nXft.dpi:";
  const auto property = Property(x, root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING);
  if (!property) return 1.0;
  const auto length = static_cast<std::size_t>(xcb_get_property_value_length(property.get()));
  const std::string resources =
      '\n' + std::string(static_cast<const char *>(xcb_get_property_value(property.get())), length);
  const auto found = resources.find(Name);
  if (found == std::string::npos) return 1.0;
  const double factor = std::atof(resources.c_str() + found + Name.size()) / DotsPerInch;
  return factor > 0.0 ? factor : 1.0; // Qt, too, ignores what isn't a positive number
}

/// The area free of panels, over all screens.
QRect WorkArea(xcb_connection_t *x, xcb_window_t root, const QRect &all) {
  constexpr std::string_view Name = "_NET_WORKAREA";
  const auto atom = Own(xcb_intern_atom_reply(x, xcb_intern_atom(x, 1, Name.size(), Name.data()), nullptr));
  if (!atom || atom->atom == XCB_ATOM_NONE) return all;
  const auto property = Property(x, root, atom->atom, XCB_ATOM_CARDINAL);
  constexpr int BytesOfAnArea = 16;
  if (!property || property->format != 32 || xcb_get_property_value_length(property.get()) < BytesOfAnArea)
    return all;
  const auto *area = static_cast<const std::int32_t *>(xcb_get_property_value(property.get()));
  return {area[0], area[1], area[2], area[3]};
}

} // namespace

std::optional<DisplayFacts> QueryX() {
  int number = 0;
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> x(xcb_connect(nullptr, &number),
                                                                       xcb_disconnect);
  if (xcb_connection_has_error(x.get())) return std::nullopt;
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(x.get()));
  for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
  const xcb_screen_t &root = *screens.data;

  const QRect all(0, 0, root.width_in_pixels, root.height_in_pixels);
  DisplayFacts display{all, OwnFactor(x.get(), root.root)};
  const auto *extension = xcb_get_extension_data(x.get(), &xcb_randr_id);
  if (extension && extension->present) {
    const auto monitors =
        Own(xcb_randr_get_monitors_reply(x.get(), xcb_randr_get_monitors(x.get(), root.root, 1), nullptr));
    auto each = monitors ? xcb_randr_get_monitors_monitors_iterator(monitors.get())
                         : xcb_randr_monitor_info_iterator_t{};
    display.screens = std::max(each.rem, 1);
    for (bool first = true; each.rem > 0; xcb_randr_monitor_info_next(&each), first = false) {
      const auto &monitor = *each.data;
      if (first || monitor.primary) display.freeArea = {monitor.x, monitor.y, monitor.width, monitor.height};
    }
  }
  const QRect free = display.freeArea & WorkArea(x.get(), root.root, all);
  if (!free.isEmpty()) display.freeArea = free;
  return display;
}
