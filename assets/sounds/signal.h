#pragma once

// Building blocks of sound. A signal is a sequence of samples at 44.1 kHz, about -1 to 1.

#include <cstdint>
#include <filesystem>
#include <numbers>
#include <vector>

namespace sounds {

constexpr int Rate = 44100; ///< samples per second
using std::numbers::pi;

using Signal = std::vector<double>;

inline std::size_t Samples(double seconds) { return static_cast<std::size_t>(seconds * Rate); }

/// Our own generator, so that a sound is the same on every machine.
class Random {
public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761U + 12345U) {}
  double Next(); ///< 0 to below 1
  double Between(double low, double high) { return low + (high - low) * Next(); }
  double Noise() { return 2.0 * Next() - 1.0; }

private:
  std::uint32_t state_;
};

/// A second-order band-pass filter with a gain of 1 at its centre.
class BandPass {
public:
  BandPass(double frequency, double quality);
  double operator()(double in);

  /// Copies the state of another filter, so that a moving band doesn't click.
  void CopyState(const BandPass &other);

private:
  double b0_, a1_, a2_;
  double x1_ = 0, x2_ = 0, y1_ = 0, y2_ = 0;
};

/// A first-order low-pass filter.
class LowPass {
public:
  explicit LowPass(double frequency);
  double operator()(double in) { return state_ += share_ * (in - state_); }

private:
  double share_;
  double state_ = 0;
};

void Add(Signal &to, const Signal &what, double atSeconds, double gain = 1.0);

/// Fades both ends, so that nothing clicks.
void Fade(Signal &signal, double inSeconds, double outSeconds);

/// Makes a loop by cross-fading the end into the beginning. Shortens the signal by that time.
void CloseLoop(Signal &signal, double seconds);

/// Rotates a loop by less than a time, to begin at its quietest sample, so that the first start doesn't
/// click.
void BeginAtSilence(Signal &signal, double withinSeconds);

/// Adds the reverberation of a large space.
void Reverberate(Signal &signal, double seconds, double share);

/// The same for a loop: the tail wraps around to the beginning.
void ReverberateLoop(Signal &signal, double seconds, double share);

/// Scales a sound to a perceived loudness, the dBFS of its loudest half second.
void Level(Signal &signal, double decibels);

/// A limiter: reduces the gain smoothly around each peak above the ceiling, a fraction of full scale. Treats
/// the signal as a loop, which makes no difference if it ends in silence.
void Limit(Signal &signal, double ceiling);

void Write(const Signal &signal, const std::filesystem::path &file);

} // namespace sounds
