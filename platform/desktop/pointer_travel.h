#pragma once

// The arithmetic of a held pointer: how far the hand has moved it, though it is moved back under the hand
// time and again, stops at the screen's edges, and jumps. Knows nothing of any display, so that it can be
// tried against a simulated one.

#include <map>

/// A place on the display or a way across it, in what the display counts. Fractions count.
struct Dots {
  double x = 0;
  double y = 0;
  friend Dots operator+(Dots a, Dots b) { return {a.x + b.x, a.y + b.y}; }
  friend Dots operator-(Dots a, Dots b) { return {a.x - b.x, a.y - b.y}; }
  friend bool operator==(Dots, Dots) = default;
};

/// A display tells a motion twice: what the device has reported, then where the pointer is. A move that a
/// program has asked for is told by the place alone, so what devices report adds up to the hand's way
/// whatever programs do to the pointer.
class PointerTravel {
public:
  enum class Device {
    TellsWay,   ///< a mouse: how far it went
    TellsPlace, ///< a tablet, a remote viewer: where it is; it doesn't go along when the pointer is moved
    TellsEither ///< a program that plays the part of a device, by ways and places as it likes
  };

  /// @param place  where the pointer is
  explicit PointerTravel(Dots place) : begin_(place) {}

  /// A device has reported a motion. Returns the hand's way as far as it can be told by now.
  /// @param id      of the device, any number
  /// @param values  the way, or a place in the device's own count
  Dots Reported(int id, Device device, Dots values);

  /// The pointer has come to a place by a motion of that device, or by a move while that device was used
  /// last. Returns the hand's way as far as `Reported` hasn't told it.
  Dots Moved(int id, Dots place);

private:
  struct Report {
    Device device;
    Dots values;
  };
  std::map<int, Report> reports_; ///< of places, until the pointer's own place tells what they mean
  std::map<int, Dots> places_;    ///< where devices that tell places were last
  Dots begin_;
};
