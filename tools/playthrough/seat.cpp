#include "tools/playthrough/seat.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STB_IMAGE_WRITE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cstdlib>
#include <thread>

namespace {

constexpr Milliseconds LookAgain(20);
constexpr Milliseconds HandMoves(30); ///< between two input events

/// A window may close while it is being read, so X errors are ignored.
int PassOver(Display *, XErrorEvent *) { return 0; }

} // namespace

void Pause(Milliseconds time) { std::this_thread::sleep_for(time); }

double MeanDifference(const Image &a, const Image &b) {
  const int width = std::min(a.Width, b.Width);
  const int height = std::min(a.Height, b.Height);
  if (width == 0 || height == 0) return 255.0;
  double sum = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Pixel &p = a.At(x, y);
      const Pixel &q = b.At(x, y);
      sum += std::abs(p.Red - q.Red) + std::abs(p.Green - q.Green) + std::abs(p.Blue - q.Blue);
    }
  }
  return sum / (3.0 * width * height);
}

Image LoadImage(const std::filesystem::path &file) {
  Image image;
  int channels = 0;
  unsigned char *bytes = stbi_load(file.c_str(), &image.Width, &image.Height, &channels, 3);
  if (!bytes) throw GaveUp("can't read " + file.string());
  const auto count = static_cast<std::size_t>(image.Width) * static_cast<std::size_t>(image.Height);
  image.Pixels.reserve(count);
  for (std::size_t i = 0; i < count; ++i)
    image.Pixels.push_back({bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]});
  stbi_image_free(bytes);
  return image;
}

void SaveImage(const Image &image, const std::filesystem::path &file) {
  std::vector<unsigned char> bytes;
  bytes.reserve(image.Pixels.size() * 3);
  for (const Pixel &pixel : image.Pixels) {
    for (const int part : {pixel.Red, pixel.Green, pixel.Blue})
      bytes.push_back(static_cast<unsigned char>(part));
  }
  if (!stbi_write_png(file.c_str(), image.Width, image.Height, 3, bytes.data(), 3 * image.Width)) {
    throw GaveUp("can't write " + file.string());
  }
}

Seat::Seat(const std::string &display) : display_(XOpenDisplay(display.empty() ? nullptr : display.c_str())) {
  if (!display_) throw GaveUp("there is no display");
  XSetErrorHandler(PassOver);
}

Seat::~Seat() { XCloseDisplay(display_); }

std::optional<::Window> Seat::FindBelow(::Window root, const std::string &title) {
  char *name = nullptr;
  XWindowAttributes attributes;
  if (XFetchName(display_, root, &name) && name) {
    const bool match = std::string(name).starts_with(title);
    XFree(name);
    if (match && XGetWindowAttributes(display_, root, &attributes) && attributes.map_state == IsViewable)
      return root;
  }
  ::Window parent = 0, top = 0;
  ::Window *children = nullptr;
  unsigned count = 0;
  if (!XQueryTree(display_, root, &top, &parent, &children, &count)) return std::nullopt;
  std::optional<::Window> found;
  for (unsigned i = count; i > 0 && !found; --i) found = FindBelow(children[i - 1], title);
  if (children) XFree(children);
  return found;
}

std::optional<::Window> Seat::Find(const std::string &title) {
  return FindBelow(DefaultRootWindow(display_), title);
}

::Window Seat::WaitFor(const std::string &title, Milliseconds patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (std::chrono::steady_clock::now() < end) {
    if (const auto window = Find(title)) return *window;
    Pause(LookAgain);
  }
  throw GaveUp("no window \"" + title + "\" has appeared");
}

Image Seat::Read(Drawable from, int x, int y, int width, int height) {
  Image image;
  XImage *raw = XGetImage(display_, from, x, y, static_cast<unsigned>(width), static_cast<unsigned>(height),
                          AllPlanes, ZPixmap);
  if (!raw) return image;
  image.Width = width;
  image.Height = height;
  image.Pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const unsigned long value = XGetPixel(raw, column, row);
      image.Pixels.push_back({static_cast<int>(value >> 16 & 0xFF), static_cast<int>(value >> 8 & 0xFF),
                              static_cast<int>(value & 0xFF)});
    }
  }
  XDestroyImage(raw);
  return image;
}

bool Seat::HasKeyboard(::Window window) {
  ::Window focused = None;
  int ignored = 0;
  XGetInputFocus(display_, &focused, &ignored);
  while (focused != None && focused != PointerRoot && focused != window) {
    ::Window root = None, parent = None, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display_, focused, &root, &parent, &children, &count)) return false;
    if (children) XFree(children);
    focused = parent;
  }
  return focused == window;
}

Image Seat::Look(::Window window, int x, int y, int width, int height) {
  // Reads the screen, so that windows on top are included.
  int rootX = 0, rootY = 0;
  ::Window child = 0;
  XTranslateCoordinates(display_, window, DefaultRootWindow(display_), x, y, &rootX, &rootY, &child);
  return Read(DefaultRootWindow(display_), rootX, rootY, width, height);
}

Image Seat::Screen() {
  const int screen = DefaultScreen(display_);
  return Read(DefaultRootWindow(display_), 0, 0, DisplayWidth(display_, screen),
              DisplayHeight(display_, screen));
}

void Seat::MoveTo(::Window window, int x, int y) {
  int rootX = 0, rootY = 0;
  ::Window child = 0;
  XTranslateCoordinates(display_, window, DefaultRootWindow(display_), x, y, &rootX, &rootY, &child);
  XTestFakeMotionEvent(display_, -1, rootX, rootY, CurrentTime);
  XFlush(display_);
}

void Seat::MoveBy(int dx, int dy) {
  XTestFakeRelativeMotionEvent(display_, dx, dy, CurrentTime);
  XFlush(display_);
}

void Seat::Button(unsigned button, bool down) {
  XTestFakeButtonEvent(display_, button, down, CurrentTime);
  XFlush(display_);
}

void Seat::Click(::Window window, int x, int y) {
  MoveTo(window, x, y);
  Pause(HandMoves);
  Button(1, true);
  Pause(HandMoves);
  Button(1, false);
  Pause(HandMoves);
}

void Seat::Key(KeySym key, bool down) {
  XTestFakeKeyEvent(display_, XKeysymToKeycode(display_, key), down, CurrentTime);
  XFlush(display_);
}

void Seat::Press(KeySym key) {
  Key(key, true);
  Pause(HandMoves);
  Key(key, false);
  Pause(HandMoves);
}

void Seat::Type(const std::string &text) {
  for (const char letter : text) Press(static_cast<KeySym>(static_cast<unsigned char>(letter)));
}
