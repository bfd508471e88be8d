#pragma once

// Input and screen capture on an X display. Knows nothing of the game.

#include <X11/Xlib.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// An expected event didn't happen, or there is another reason to give up.
class GaveUp : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct Pixel {
  int Red, Green, Blue;
};

/// A rectangle of pixels, rows from the top.
struct Image {
  int Width = 0;
  int Height = 0;
  std::vector<Pixel> Pixels;
  const Pixel &At(int x, int y) const {
    return Pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) +
                  static_cast<std::size_t>(x)];
  }
};

/// The mean difference per channel of two images, 0 to 255, over their common size.
double MeanDifference(const Image &a, const Image &b);

Image LoadImage(const std::filesystem::path &file);
void SaveImage(const Image &image, const std::filesystem::path &file); ///< as PNG

using Milliseconds = std::chrono::milliseconds;

class Seat {
public:
  /// @param display  as in the DISPLAY variable; empty for the default
  explicit Seat(const std::string &display = {});
  ~Seat();
  Seat(const Seat &) = delete;
  Seat &operator=(const Seat &) = delete;

  /// The visible window whose title begins with `title`.
  std::optional<::Window> Find(const std::string &title);

  /// Waits for such a window.
  /// @throws GaveUp  after `patience`
  ::Window WaitFor(const std::string &title, Milliseconds patience = Milliseconds(20000));

  /// Whether keys go to that window or one inside it.
  bool HasKeyboard(::Window window);

  /// The pixels of a rectangle in a window's client area.
  Image Look(::Window window, int x, int y, int width, int height);

  Image Screen(); ///< the whole screen

  void MoveTo(::Window window, int x, int y);
  void MoveBy(int dx, int dy);
  void Button(unsigned button, bool down);
  void Click(::Window window, int x, int y);
  void Key(KeySym key, bool down);
  void Press(KeySym key);
  void Type(const std::string &text);

private:
  std::optional<::Window> FindBelow(::Window root, const std::string &title);
  Image Read(Drawable from, int x, int y, int width, int height);

  Display *display_;
};

/// Sleeps.
void Pause(Milliseconds time);
