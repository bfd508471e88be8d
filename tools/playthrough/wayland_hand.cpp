// A virtual mouse for a Wayland compositor. Reads commands from standard input, one per line:
//   to X Y     moves to a position on the screen
//   by X Y     moves by an offset, fractions allowed
//   down N     presses button 1 (left) or 3 (right)
//   up N       releases it
//   hold N MS  presses it for some milliseconds
//   charge X Y MS  presses button 1, waits until that pixel of the screen changes, and releases it MS later
//   wayland_hand SCREEN_WIDTH SCREEN_HEIGHT

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>

namespace {

// The used parts of the protocols, as the scanner would generate them.
enum Request : std::uint32_t { Motion, MotionAbsolute, Button, Axis, Frame };
const wl_interface *NoTypes[5] = {};
const wl_message MouseRequests[] = {
    {"motion", "uff", NoTypes}, {"motion_absolute", "uuuuu", NoTypes},
    {"button", "uuu", NoTypes}, {"axis", "uuf", NoTypes},
    {"frame", "", NoTypes},
};
const wl_interface MouseInterface = {"zwlr_virtual_pointer_v1", 1, 5, MouseRequests, 0, nullptr};
const wl_interface *MouseTypes[] = {&wl_seat_interface, &MouseInterface};
const wl_message MakerRequests[] = {{"create_virtual_pointer", "?on", MouseTypes}};
const wl_interface MakerInterface = {"zwlr_virtual_pointer_manager_v1", 1, 1, MakerRequests, 0, nullptr};

enum FrameRequest : std::uint32_t { Copy, DestroyFrame };
const wl_interface *FrameTypes[] = {&wl_buffer_interface};
const wl_message FrameRequests[] = {{"copy", "o", FrameTypes}, {"destroy", "", NoTypes}};
const wl_message FrameEvents[] = {
    {"buffer", "uuuu", NoTypes}, {"flags", "u", NoTypes}, {"ready", "uuu", NoTypes}, {"failed", "", NoTypes}};
const wl_interface FrameInterface = {"zwlr_screencopy_frame_v1", 1, 2, FrameRequests, 4, FrameEvents};
enum CameraRequest : std::uint32_t { CaptureOutput, CaptureRegion };
const wl_interface *CaptureTypes[] = {&FrameInterface, nullptr, &wl_output_interface, nullptr, nullptr,
                                      nullptr,         nullptr};
const wl_message CameraRequests[] = {{"capture_output", "nio", CaptureTypes},
                                     {"capture_output_region", "nioiiii", CaptureTypes}};
const wl_interface CameraInterface = {"zwlr_screencopy_manager_v1", 1, 2, CameraRequests, 0, nullptr};

struct Globals {
  wl_proxy *maker = nullptr, *camera = nullptr;
  wl_output *screen = nullptr;
  wl_shm *memory = nullptr;
};

const wl_registry_listener RegistryListener = {
    .global =
        [](void *data, wl_registry *registry, std::uint32_t number, const char *interface, std::uint32_t) {
          Globals &globals = *static_cast<Globals *>(data);
          const auto bind = [&](auto *&into, const wl_interface &wanted) {
            if (std::strcmp(interface, wanted.name) != 0) return;
            into = static_cast<std::remove_reference_t<decltype(into)>>(
                wl_registry_bind(registry, number, &wanted, 1));
          };
          bind(globals.maker, MakerInterface);
          bind(globals.camera, CameraInterface);
          bind(globals.screen, wl_output_interface);
          bind(globals.memory, wl_shm_interface);
        },
    .global_remove = [](void *, wl_registry *, std::uint32_t) {},
};

std::uint32_t Now() {
  using namespace std::chrono;
  return static_cast<std::uint32_t>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

class Mouse {
public:
  Mouse(wl_display *compositor, wl_proxy *maker)
      : compositor_(compositor),
        mouse_(wl_proxy_marshal_flags(maker, 0, &MouseInterface, 1, 0, nullptr, nullptr)) {}

  void MoveTo(unsigned x, unsigned y, unsigned width, unsigned height) {
    Tell(MotionAbsolute, Now(), x, y, width, height);
  }
  void MoveBy(double x, double y) { Tell(Motion, Now(), wl_fixed_from_double(x), wl_fixed_from_double(y)); }
  void Press(int button, bool down) {
    constexpr unsigned Left = 0x110, Right = 0x111; // the kernel's button codes
    Tell(Button, Now(), button == 1 ? Left : Right, down ? 1U : 0U);
  }

private:
  template <class... Words> void Tell(Request request, Words... words) {
    wl_proxy_marshal_flags(mouse_, request, nullptr, 1, 0, words...);
    wl_proxy_marshal_flags(mouse_, Frame, nullptr, 1, 0);
    wl_display_roundtrip(compositor_);
  }

  wl_display *compositor_;
  wl_proxy *mouse_;
};

/// Reads single pixels of the screen.
class Eye {
public:
  Eye(wl_display *compositor, const Globals &globals) : compositor_(compositor), globals_(globals) {
    const int file = memfd_create("pixel", 0);
    if (file < 0 || ftruncate(file, Size) != 0) throw std::runtime_error("no memory");
    pixel_ = static_cast<std::uint32_t *>(mmap(nullptr, Size, PROT_READ, MAP_SHARED, file, 0));
    pool_ = wl_shm_create_pool(globals.memory, file, Size);
    close(file);
  }

  std::uint32_t Look(int x, int y) {
    Shot shot{*this};
    wl_proxy *frame = wl_proxy_marshal_flags(globals_.camera, CaptureRegion, &FrameInterface, 1, 0, nullptr,
                                             0, globals_.screen, x, y, 1, 1);
    wl_proxy_add_listener(frame, const_cast<void (**)()>(Listener), &shot);
    while (!shot.ended && wl_display_dispatch(compositor_) >= 0) {
    }
    wl_proxy_marshal_flags(frame, DestroyFrame, nullptr, 1, WL_MARSHAL_FLAG_DESTROY);
    if (shot.buffer) wl_buffer_destroy(shot.buffer);
    return *pixel_;
  }

private:
  static constexpr int Size = 4096; // bytes; a desktop pixel may be several screen pixels

  struct Shot {
    Eye &eye;
    wl_buffer *buffer = nullptr;
    bool ended = false;
  };

  static void Offer(void *data, wl_proxy *frame, std::uint32_t format, std::uint32_t width,
                    std::uint32_t height, std::uint32_t stride) {
    Shot &shot = *static_cast<Shot *>(data);
    shot.buffer = wl_shm_pool_create_buffer(shot.eye.pool_, 0, static_cast<int>(width),
                                            static_cast<int>(height), static_cast<int>(stride), format);
    wl_proxy_marshal_flags(frame, Copy, nullptr, 1, 0, shot.buffer);
  }
  static void Flags(void *, wl_proxy *, std::uint32_t) {}
  static void Ready(void *data, wl_proxy *, std::uint32_t, std::uint32_t, std::uint32_t) { End(data); }
  static void Failed(void *data, wl_proxy *) { End(data); }
  static void End(void *data) { static_cast<Shot *>(data)->ended = true; }
  using Function = void (*)();
  static inline const Function Listener[] = {
      reinterpret_cast<Function>(Offer), reinterpret_cast<Function>(Flags), reinterpret_cast<Function>(Ready),
      reinterpret_cast<Function>(Failed)};

  wl_display *compositor_;
  Globals globals_;
  std::uint32_t *pixel_;
  wl_shm_pool *pool_;
};

void Sleep(double milliseconds) {
  std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(milliseconds));
}

/// Presses until the pixel changes, with a time-out.
void Charge(Mouse &mouse, Eye &eye, int x, int y, double late) {
  constexpr std::uint32_t Patience = 10000; // ms
  const std::uint32_t before = eye.Look(x, y), start = Now();
  mouse.Press(1, true);
  while (eye.Look(x, y) == before && Now() - start < Patience) {
  }
  Sleep(late);
  mouse.Press(1, false);
}

} // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::cerr << "usage: wayland_hand SCREEN_WIDTH SCREEN_HEIGHT" << std::endl;
    return 2;
  }
  wl_display *compositor = wl_display_connect(nullptr);
  Globals globals;
  if (compositor) {
    wl_registry_add_listener(wl_display_get_registry(compositor), &RegistryListener, &globals);
    wl_display_roundtrip(compositor);
  }
  if (!globals.maker || !globals.camera || !globals.screen || !globals.memory) {
    std::cerr << "wayland_hand: no compositor that takes a virtual mouse and shows its screen" << std::endl;
    return 1;
  }
  Mouse mouse(compositor, globals.maker);
  Eye eye(compositor, globals);
  const auto width = static_cast<unsigned>(std::atoi(argv[1])),
             height = static_cast<unsigned>(std::atoi(argv[2]));
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string command;
    double a = 0, b = 0, c = 0;
    words >> command >> a >> b >> c;
    if (command == "to") mouse.MoveTo(static_cast<unsigned>(a), static_cast<unsigned>(b), width, height);
    if (command == "by") mouse.MoveBy(a, b);
    if (command == "charge") Charge(mouse, eye, static_cast<int>(a), static_cast<int>(b), c);
    if (command == "down" || command == "hold") mouse.Press(static_cast<int>(a), true);
    if (command == "hold") Sleep(b);
    if (command == "up" || command == "hold") mouse.Press(static_cast<int>(a), false);
    std::cout << "done" << std::endl;
  }
}
