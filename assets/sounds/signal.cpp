#include "assets/sounds/signal.h"

#include <sndfile.hh>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace sounds {

double Random::Next() {
  state_ ^= state_ << 13U;
  state_ ^= state_ >> 17U;
  state_ ^= state_ << 5U;
  return static_cast<double>(state_ >> 8U) / 16777216.0;
}

BandPass::BandPass(double frequency, double quality) {
  const double angle = 2 * pi * std::min(frequency, Rate * 0.45) / Rate;
  const double alpha = std::sin(angle) / (2 * quality);
  b0_ = alpha / (1 + alpha);
  a1_ = -2 * std::cos(angle) / (1 + alpha);
  a2_ = (1 - alpha) / (1 + alpha);
}

double BandPass::operator()(double in) {
  const double out = b0_ * (in - x2_) - a1_ * y1_ - a2_ * y2_;
  x2_ = x1_;
  x1_ = in;
  y2_ = y1_;
  y1_ = out;
  return out;
}

void BandPass::CopyState(const BandPass &other) {
  x1_ = other.x1_;
  x2_ = other.x2_;
  y1_ = other.y1_;
  y2_ = other.y2_;
}

LowPass::LowPass(double frequency) : share_(1 - std::exp(-2 * pi * frequency / Rate)) {}

void Add(Signal &to, const Signal &what, double atSeconds, double gain) {
  const std::size_t first = Samples(atSeconds);
  if (to.size() < first + what.size()) to.resize(first + what.size(), 0.0);
  for (std::size_t i = 0; i < what.size(); ++i) to[first + i] += gain * what[i];
}

void Fade(Signal &signal, double inSeconds, double outSeconds) {
  const auto shape = [](std::size_t i, std::size_t count) {
    return 0.5 - 0.5 * std::cos(pi * static_cast<double>(i) / static_cast<double>(count));
  };
  const std::size_t in = std::min(Samples(inSeconds), signal.size()),
                    out = std::min(Samples(outSeconds), signal.size());
  for (std::size_t i = 0; i < in; ++i) signal[i] *= shape(i, in);
  for (std::size_t i = 0; i < out; ++i) signal[signal.size() - 1 - i] *= shape(i, out);
}

void CloseLoop(Signal &signal, double seconds) {
  const std::size_t overlap = Samples(seconds);
  const std::size_t length = signal.size() - overlap;
  for (std::size_t i = 0; i < overlap; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(overlap);
    // Equal-power cross-fade, because the two ends are uncorrelated.
    signal[i] = std::sqrt(share) * signal[i] + std::sqrt(1 - share) * signal[length + i];
  }
  signal.resize(length);
}

void BeginAtSilence(Signal &signal, double withinSeconds) {
  const auto end =
      signal.begin() + static_cast<std::ptrdiff_t>(std::min(Samples(withinSeconds), signal.size()));
  std::rotate(
      signal.begin(),
      std::min_element(signal.begin(), end, [](double a, double b) { return std::abs(a) < std::abs(b); }),
      signal.end());
}

namespace {

/// One set of echoes: incommensurable delays, each with low-passed feedback.
Signal Echoes(const Signal &signal, double seconds) {
  Signal out(signal.size(), 0.0);
  for (const double delay : {0.0297, 0.0371, 0.0411, 0.0437, 0.0533, 0.0617}) {
    Signal line(Samples(delay), 0.0);
    LowPass wall(3800);
    const double feedback = std::pow(10.0, -3.0 * delay / seconds);
    std::size_t at = 0;
    for (std::size_t i = 0; i < signal.size(); ++i) {
      const double heard = line[at];
      line[at] = signal[i] + feedback * wall(heard);
      at = (at + 1) % line.size();
      out[i] += heard / 6;
    }
  }
  return out;
}

} // namespace

void Reverberate(Signal &signal, double seconds, double share) {
  const Signal echoes = Echoes(signal, seconds);
  for (std::size_t i = 0; i < signal.size(); ++i) signal[i] += share * echoes[i];
}

void ReverberateLoop(Signal &signal, double seconds, double share) {
  Signal twice = signal;
  twice.insert(twice.end(), signal.begin(), signal.end());
  const Signal echoes = Echoes(twice, seconds);
  for (std::size_t i = 0; i < signal.size(); ++i) signal[i] += share * echoes[signal.size() + i];
}

void Level(Signal &signal, double decibels) {
  double mean = 0;
  for (const double sample : signal) mean += sample;
  mean /= static_cast<double>(signal.size());
  for (double &sample : signal) sample -= mean;

  // High tones sound about 4 dB louder.
  constexpr double HighFrom = 1000, HighGain = 0.58; // Hz; 1.58 is 4 dB
  LowPass low(HighFrom);
  Signal heard = signal;
  for (double &sample : heard) sample += HighGain * (sample - low(sample));
  const std::size_t window = std::min(Samples(0.5), heard.size());
  double power = 0, loudest = 0;
  for (std::size_t i = 0; i < heard.size(); ++i) {
    power += heard[i] * heard[i];
    if (i >= window) power -= heard[i - window] * heard[i - window];
    if (i + 1 >= window) loudest = std::max(loudest, power);
  }
  const double gain = std::pow(10.0, decibels / 20) / std::sqrt(loudest / static_cast<double>(window));
  for (double &sample : signal) sample *= gain;
}

void Limit(Signal &signal, double ceiling) {
  constexpr double Reach = 0.006; // seconds before and after a peak within which the gain falls and rises
  const std::size_t reach = Samples(Reach), count = signal.size();
  if (count == 0) return;
  // The minimum gain within reach, then its moving average, so that the gain falls in time.
  std::vector<double> needed(count, 1.0);
  for (std::size_t i = 0; i < count; ++i) {
    const double peak = std::abs(signal[i]);
    if (peak <= ceiling) continue;
    for (std::size_t k = 0; k <= 2 * reach; ++k) {
      double &gain = needed[(i + count - reach + k) % count];
      gain = std::min(gain, ceiling / peak);
    }
  }
  double sum = 0;
  for (std::size_t k = 0; k <= 2 * reach; ++k) sum += needed[(count - reach + k) % count];
  for (std::size_t i = 0; i < count; ++i) {
    signal[i] *= sum / static_cast<double>(2 * reach + 1);
    sum += needed[(i + reach + 1) % count] - needed[(i + count - reach) % count];
  }
}

void Write(const Signal &signal, const std::filesystem::path &file) {
  SndfileHandle sound(file.c_str(), SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, Rate);
  const auto count = static_cast<sf_count_t>(signal.size());
  if (sound.write(signal.data(), count) != count) throw std::runtime_error("can't write " + file.string());
}

} // namespace sounds
