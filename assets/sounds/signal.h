#pragma once

// Building blocks of sound: a signal is a row of samples at 44.1 kHz, about -1 to 1.

#include <cstdint>
#include <filesystem>
#include <vector>

namespace sounds {

constexpr int Rate = 44100; ///< samples a second
constexpr double Pi = 3.14159265358979323846;

using Signal = std::vector<double>;

inline std::size_t Samples(double seconds) { return static_cast<std::size_t>(seconds * Rate); }

/// A generator of our own, so that a sound is the same on every machine.
class Random {
public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761U + 12345U) {}
  double Next(); ///< 0 to below 1
  double Between(double low, double high) { return low + (high - low) * Next(); }
  double Noise() { return 2.0 * Next() - 1.0; }

private:
  std::uint32_t state_;
};

/// A filter of second order that lets a band pass, with a gain of 1 at its middle.
class BandPass {
public:
  BandPass(double frequency, double quality);
  double operator()(double in);

  /// Goes on where another filter stands: a band that moves doesn't click.
  void TakeMemoryOf(const BandPass &other);

private:
  double b0_, a1_, a2_;
  double x1_ = 0, x2_ = 0, y1_ = 0, y2_ = 0;
};

/// A filter of first order that lets low frequencies pass.
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

/// Makes a loop: the end is laid over the beginning and fades into it. The signal gets shorter by that time.
void CloseLoop(Signal &signal, double seconds);

/// Turns a loop round, by less than a time, so that it begins where it is nearest to silence: its first start
/// doesn't click.
void BeginAtSilence(Signal &signal, double withinSeconds);

/// Adds the echoes of a large place.
void Reverberate(Signal &signal, double seconds, double share);

/// The same for a loop: what rings on at the end rings into the beginning.
void ReverberateLoop(Signal &signal, double seconds, double share);

/// Brings a sound to a loudness as an ear has it (dB of its loudest half second, of full scale).
void Level(Signal &signal, double decibels);

/// Turns a sound down around each peak above the ceiling (share of full scale), so gently that nothing is
/// distorted. Takes the signal for a loop; a sound that ends in silence isn't changed by that.
void Limit(Signal &signal, double ceiling);

void Write(const Signal &signal, const std::filesystem::path &file);

} // namespace sounds
