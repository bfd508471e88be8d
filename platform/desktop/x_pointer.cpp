// Pointer capture under X. The motion comes from device reports; the pointer is only kept over the window so
// that presses go there.

#include "platform/desktop/pointer_hold.h"
#include "platform/desktop/x_reply.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <string_view>
#include <utility>

namespace {

using Device = PointerTravel::Device;

constexpr int Stray = 60; ///< maximum distance from the middle of the widget, x plus y, device pixels

double Convert(xcb_input_fp1616_t fixed) { return fixed / 65536.0; }
double Convert(xcb_input_fp3232_t fixed) { return fixed.integral + fixed.frac / 4294967296.0; }

/// The kind of a device.
Device KindOf(xcb_connection_t *x, xcb_input_device_id_t id) {
  const auto reply = Own(xcb_input_xi_query_device_reply(x, xcb_input_xi_query_device(x, id), nullptr));
  if (!reply || reply->num_infos == 0) return Device::Relative;
  const auto infos = xcb_input_xi_query_device_infos_iterator(reply.get());
  const std::string_view name(xcb_input_xi_device_info_name(infos.data), infos.data->name_len);
  if (name.find("XTEST") != name.npos) return Device::Mixed;
  for (auto each = xcb_input_xi_device_info_classes_iterator(infos.data); each.rem > 0;
       xcb_input_device_class_next(&each)) {
    if (each.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_VALUATOR) continue;
    const auto *axis = reinterpret_cast<const xcb_input_valuator_class_t *>(each.data);
    if (axis->number == 0 && axis->mode == XCB_INPUT_VALUATOR_MODE_ABSOLUTE) return Device::Absolute;
  }
  return Device::Relative;
}

/// The first two values of a report; a missing one is unchanged.
Vec2 ValuesOf(const xcb_input_raw_motion_event_t &report) {
  const std::uint32_t *mask = xcb_input_raw_button_press_valuator_mask(&report);
  if (report.valuators_len == 0) return {};
  const xcb_input_fp3232_t *value = xcb_input_raw_button_press_axisvalues(&report);
  Vec2 values;
  if (mask[0] & 1U) values.x = Convert(*value++);
  if (mask[0] & 2U) values.y = Convert(*value);
  return values;
}

class XHold : public PointerHold, QAbstractNativeEventFilter {
public:
  XHold(QWidget &over, xcb_connection_t *x, std::uint8_t extension, Moved moved)
      : over_(over), x_(x), extension_(extension), moved_(std::move(moved)), travel_(FindAnchor()) {
    // A quick motion may leave the window before the pointer is moved back.
    over_.grabMouse();
    SelectRawMotion(true);
    MoveBack();
    qGuiApp->installNativeEventFilter(this);
  }

  ~XHold() override {
    qGuiApp->removeNativeEventFilter(this);
    SelectRawMotion(false);
    over_.releaseMouse();
  }

private:
  /// Finds the middle of the widget. Returns the position of the pointer.
  Vec2 FindAnchor() {
    const QWidget &window = *over_.window();
    const QPointF middle = QPointF(over_.mapTo(&window, over_.rect().center())) * over_.devicePixelRatioF();
    const auto asked = xcb_query_pointer(x_, static_cast<xcb_window_t>(window.winId()));
    const auto reply = Own(xcb_query_pointer_reply(x_, asked, nullptr));
    if (!reply) return {};
    root_ = reply->root;
    anchorX_ = static_cast<std::int16_t>(reply->root_x - reply->win_x + std::lround(middle.x()));
    anchorY_ = static_cast<std::int16_t>(reply->root_y - reply->win_y + std::lround(middle.y()));
    return {static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
  }

  void SelectRawMotion(bool select) {
    constexpr std::uint32_t Nothing = 0, RawMotion = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
    const struct {
      xcb_input_event_mask_t head;
      std::uint32_t events;
    } mask = {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, select ? RawMotion : Nothing};
    xcb_input_xi_select_events(x_, root_, 1, &mask.head);
    xcb_flush(x_);
  }

  void MoveBack() {
    warping_ = true;
    warpRequest_ = xcb_warp_pointer(x_, XCB_NONE, root_, 0, 0, 0, 0, anchorX_, anchorY_).sequence;
    xcb_flush(x_);
  }

  bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override {
    const auto &event = *static_cast<const xcb_ge_generic_event_t *>(message);
    if (event.response_type != XCB_GE_GENERIC || event.extension != extension_) return false;
    if (event.event_type == XCB_INPUT_RAW_MOTION) {
      const auto &report = reinterpret_cast<const xcb_input_raw_motion_event_t &>(event);
      Report(travel_.Reported(report.sourceid, Kind(report.sourceid), ValuesOf(report)));
      return true;
    }
    if (event.event_type != XCB_INPUT_MOTION) return false;
    const auto &motion = reinterpret_cast<const xcb_input_motion_event_t &>(event);
    const Vec2 place{Convert(motion.root_x), Convert(motion.root_y)};
    Report(travel_.Moved(motion.sourceid, place));
    // An event has the sequence number of the last request that the display had executed.
    if (static_cast<std::int32_t>(event.full_sequence - warpRequest_) >= 0) warping_ = false;
    const bool strayed = std::abs(place.x - anchorX_) + std::abs(place.y - anchorY_) > Stray;
    // An absolute device would move the pointer away again.
    if (strayed && !warping_ && Kind(motion.sourceid) != Device::Absolute) MoveBack();
    return false;
  }

  void Report(Vec2 motion) {
    if (motion != Vec2{}) moved_(motion);
  }

  Device Kind(xcb_input_device_id_t id) {
    const auto known = kinds_.find(id);
    if (known != kinds_.end()) return known->second;
    return kinds_[id] = KindOf(x_, id);
  }

  QWidget &over_;
  xcb_connection_t *x_;
  std::uint8_t extension_; ///< number of the XInput extension
  Moved moved_;
  xcb_window_t root_ = XCB_NONE;
  std::int16_t anchorX_ = 0, anchorY_ = 0; ///< the position to move back to
  PointerTravel travel_;
  bool warping_ = false;        ///< a warp is requested, and no later event has arrived
  unsigned warpRequest_ = 0;    ///< sequence number of that request
  std::map<int, Device> kinds_; ///< kinds of the devices seen
};

} // namespace

std::unique_ptr<PointerHold> HoldPointerOnX(QWidget &over, const PointerHold::Moved &moved) {
  const auto *native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!native) return nullptr;
  xcb_connection_t *x = native->connection();
  const auto *extension = xcb_get_extension_data(x, &xcb_input_id);
  if (!extension || !extension->present) return nullptr;
  return std::make_unique<XHold>(over, x, extension->major_opcode, moved);
}
