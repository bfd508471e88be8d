// The arithmetic of the captured pointer, against a simulated display.

#include "platform/desktop/pointer_travel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

namespace {

using Device = PointerTravel::Device;

/// A display with one device, and a program that captures the pointer at times. Motions are multiples of 1/8,
/// so that sums are exact.
class Display {
public:
  Device device = Device::Relative;
  bool obeys = true; ///< whether the display moves the pointer at a program's request
  Vec2 hand;         ///< motion of the hand while the pointer was captured
  Vec2 told;         ///< motion counted by the program

  void Hold() {
    device_ = pointer_;
    program_.emplace(pointer_);
  }
  void LetGo() { program_.reset(); }
  bool Held() const { return program_.has_value(); }

  /// A program requests a move of the pointer.
  void Warp(Vec2 to) {
    if (!obeys) return;
    pointer_ = to;
    if (program_) told = told + program_->Moved(Id, pointer_);
  }

  /// @param asAbsolute  absolute or relative, for a device that supports both
  void MoveHand(Vec2 motion, bool asAbsolute) {
    if (device == Device::Absolute || (device == Device::Mixed && asAbsolute)) {
      const Vec2 from = device_;
      device_ = OnScreen(device_ + motion);
      motion = device_ - from; // an absolute device stops at the edge
      pointer_ = device_;
      constexpr double DeviceDots = 32; // resolution of a tablet
      const double scale = device == Device::Absolute ? DeviceDots : 1;
      Report({device_.x * scale, device_.y * scale}, motion);
    } else {
      pointer_ = OnScreen(pointer_ + motion);
      Report(motion, motion);
    }
  }

private:
  static constexpr int Id = 4;

  static Vec2 OnScreen(Vec2 place) {
    return {std::clamp(place.x, 0.0, 1023.0), std::clamp(place.y, 0.0, 767.0)};
  }

  void Report(Vec2 values, Vec2 motion) {
    if (!program_) return;
    hand = hand + motion;
    told = told + program_->Reported(Id, device, values);
    told = told + program_->Moved(Id, pointer_);
  }

  Vec2 pointer_{500, 350};
  Vec2 device_; ///< position of an absolute device
  std::optional<PointerTravel> program_;
};

class Chance {
public:
  bool Once(unsigned in) { return random_() % in == 0; }

  /// Mostly small, sometimes across the whole screen.
  Vec2 Motion() { return Once(50) ? Step(8 * 700) : Step(8 * 6); }

private:
  Vec2 Step(int most) {
    std::uniform_int_distribution<int> eighths(-most, most);
    const double x = eighths(random_) / 8.0;
    return {x, eighths(random_) / 8.0};
  }
  std::mt19937 random_{1};
};

TEST(PointerTravelTest, AMillionMotionsAddUpExactlyWhateverFocusAndDisplayDo) {
  constexpr int Motions = 1'000'000;
  constexpr Vec2 Anchor{400, 300};
  Display display;
  Chance chance;
  int held = 0;
  for (int motion = 0; motion < Motions; ++motion) {
    if (chance.Once(500)) { // the window gains or loses the focus
      if (display.Held()) {
        display.LetGo();
      } else {
        display.device = chance.Once(3)   ? Device::Absolute
                         : chance.Once(3) ? Device::Mixed
                                          : Device::Relative;
        // Near the origin absolute and relative values look alike, so the pointer must not stay there.
        display.obeys = display.device == Device::Mixed || !chance.Once(3);
        display.Hold();
        display.Warp(Anchor);
      }
    }
    held += display.Held() ? 1 : 0;
    display.MoveHand(chance.Motion(), chance.Once(2));
    if (display.device == Device::Mixed || chance.Once(4)) display.Warp(Anchor);
    if (chance.Once(1000)) display.Warp({900, 700});
    ASSERT_TRUE(display.told == display.hand) << "at motion " << motion;
  }
  EXPECT_GT(held, Motions / 3);
}

} // namespace
