#pragma once

// Computes the motion of the hand while the pointer is captured. The positions of the pointer alone don't
// tell it: the game keeps moving the pointer back, the edges of the screen stop it, and absolute devices make
// it jump. Independent of any display, so that it can be tested against a simulated one.

#include <map>

/// A position or motion on the display, in its units, with fractions.
struct Vec2 {
  double x = 0;
  double y = 0;
  friend Vec2 operator+(Vec2 a, Vec2 b) { return {a.x + b.x, a.y + b.y}; }
  friend Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }
  friend bool operator==(Vec2, Vec2) = default;
};

/// A display reports a motion twice: first the values of the device, then the position of the pointer. When a
/// program moves the pointer, only the position is reported. So the values of the devices add up to the
/// motion of the hand.
class PointerTravel {
public:
  enum class Device {
    Relative, ///< a mouse
    Absolute, ///< a tablet or remote viewer; not affected when a program moves the pointer
    Mixed     ///< a virtual device that reports both relative and absolute values
  };

  /// @param place  position of the pointer
  explicit PointerTravel(Vec2 place) : begin_(place) {}

  /// A device has reported a motion. Returns the motion of the hand as far as known now.
  /// @param id      of the device, any number
  /// @param values  the motion, or a position in units of the device
  Vec2 Reported(int id, Device device, Vec2 values);

  /// The pointer has moved, by that device or by a program after that device was last used. Returns the
  /// motion of the hand that `Reported` hasn't returned.
  Vec2 Moved(int id, Vec2 place);

private:
  struct Report {
    Device device;
    Vec2 values;
  };
  std::map<int, Report> reports_; ///< absolute reports, until the position of the pointer gives their meaning
  std::map<int, Vec2> places_;    ///< last positions of absolute devices
  Vec2 begin_;                    ///< position of the pointer at the start
};
