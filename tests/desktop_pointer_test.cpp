// The arithmetic of the held pointer, against a simulated display.

#include "platform/desktop/pointer_travel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

namespace {

using Device = PointerTravel::Device;

/// A display with one device, and a program that holds the pointer at times. Ways are multiples of 1/8, so
/// that sums are exact.
class Display {
public:
  Device device = Device::TellsWay;
  bool obeys = true; ///< whether it moves the pointer when a program asks for it
  Dots hand;         ///< the hand's way while the program held the pointer
  Dots told;         ///< what the program has counted of it

  void Hold() {
    device_ = pointer_;
    program_.emplace(pointer_);
  }
  void LetGo() { program_.reset(); }
  bool Held() const { return program_.has_value(); }

  /// The program, or another one, asks for the pointer to be moved.
  void Warp(Dots to) {
    if (!obeys) return;
    pointer_ = to;
    if (program_) told = told + program_->Moved(Id, pointer_);
  }

  /// @param asPlace  how a device that can tell either tells it
  void MoveHand(Dots way, bool asPlace) {
    if (device == Device::TellsPlace || (device == Device::TellsEither && asPlace)) {
      const Dots from = device_;
      device_ = OnScreen(device_ + way);
      way = device_ - from; // what tells places ends at the edge, and the hand's way with it
      pointer_ = device_;
      constexpr double DeviceDots = 32; // a tablet has a count of its own
      const double scale = device == Device::TellsPlace ? DeviceDots : 1;
      Report({device_.x * scale, device_.y * scale}, way);
    } else {
      pointer_ = OnScreen(pointer_ + way);
      Report(way, way);
    }
  }

private:
  static constexpr int Id = 4;

  static Dots OnScreen(Dots place) {
    return {std::clamp(place.x, 0.0, 1023.0), std::clamp(place.y, 0.0, 767.0)};
  }

  void Report(Dots values, Dots way) {
    if (!program_) return;
    hand = hand + way;
    told = told + program_->Reported(Id, device, values);
    told = told + program_->Moved(Id, pointer_);
  }

  Dots pointer_{500, 350};
  Dots device_; ///< where a device that tells places is
  std::optional<PointerTravel> program_;
};

class Chance {
public:
  bool Once(unsigned in) { return random_() % in == 0; }

  /// Mostly small, at times a throw across the screen.
  Dots Way() { return Once(50) ? Step(8 * 700) : Step(8 * 6); }

private:
  Dots Step(int most) {
    std::uniform_int_distribution<int> eighths(-most, most);
    const double x = eighths(random_) / 8.0;
    return {x, eighths(random_) / 8.0};
  }
  std::mt19937 random_{1};
};

TEST(PointerTravelTest, AMillionMotionsAddUpExactlyWhateverFocusAndDisplayDo) {
  constexpr int Motions = 1'000'000;
  constexpr Dots Anchor{400, 300};
  Display display;
  Chance chance;
  int held = 0;
  for (int motion = 0; motion < Motions; ++motion) {
    if (chance.Once(500)) { // the window gets the focus, wherever the pointer is, or loses it
      if (display.Held()) {
        display.LetGo();
      } else {
        display.device = chance.Once(3)   ? Device::TellsPlace
                         : chance.Once(3) ? Device::TellsEither
                                          : Device::TellsWay;
        // In the first corner of the screen ways and places are the same numbers, and the pointer must not
        // stay there.
        display.obeys = display.device == Device::TellsEither || !chance.Once(3);
        display.Hold();
        display.Warp(Anchor);
      }
    }
    held += display.Held() ? 1 : 0;
    display.MoveHand(chance.Way(), chance.Once(2));
    if (display.device == Device::TellsEither || chance.Once(4)) display.Warp(Anchor);
    if (chance.Once(1000)) display.Warp({900, 700});
    ASSERT_TRUE(display.told == display.hand) << "at motion " << motion;
  }
  EXPECT_GT(held, Motions / 3);
}

} // namespace
