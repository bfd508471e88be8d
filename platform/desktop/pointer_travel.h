#pragma once

// The arithmetic of a captured pointer: the motion of the hand, although the pointer is moved back
// repeatedly, stops at the edges of the screen, and jumps. Independent of any display, so that it can be
// tested against a simulated one.

#include <map>

/// A position or motion on the display, in its units, with fractions.
struct Dots {
  double x = 0;
  double y = 0;
  friend Dots operator+(Dots a, Dots b) { return {a.x + b.x, a.y + b.y}; }
  friend Dots operator-(Dots a, Dots b) { return {a.x - b.x, a.y - b.y}; }
  friend bool operator==(Dots, Dots) = default;
};

/// A display reports a motion twice: the values of the device, then the position of the pointer. A move
/// requested by a program only changes the position, so the reports of the devices add up to the motion of
/// the hand.
class PointerTravel {
public:
  enum class Device {
    Relative, ///< a mouse
    Absolute, ///< a tablet or remote viewer; not affected when a program moves the pointer
    Mixed     ///< a virtual device that reports both relative and absolute values
  };

  /// @param place  position of the pointer
  explicit PointerTravel(Dots place) : begin_(place) {}

  /// A device has reported a motion. Returns the motion of the hand as far as known now.
  /// @param id      of the device, any number
  /// @param values  the motion, or a position in units of the device
  Dots Reported(int id, Device device, Dots values);

  /// The pointer has moved, by that device or by a program after that device was last used. Returns the
  /// motion of the hand that `Reported` hasn't returned.
  Dots Moved(int id, Dots place);

private:
  struct Report {
    Device device;
    Dots values;
  };
  std::map<int, Report> reports_; ///< absolute reports, until the position of the pointer gives their meaning
  std::map<int, Dots> places_;    ///< last positions of absolute devices
  Dots begin_;
};
