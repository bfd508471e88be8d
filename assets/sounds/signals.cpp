// Whistles, and paper over felt.

#include "assets/sounds/sounds.h"

#include <algorithm>
#include <cmath>

namespace sounds {
namespace {

/// A pea whistle: two tones that beat, chopped by the ball, with the breath around them.
Signal Blast(double seconds, double trill, Random &random) {
  Signal out(Samples(seconds));
  BandPass breath(3400, 1.2);
  double low = 0, high = 0, ball = 0;
  LowPass shake(30);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double t = static_cast<double>(i) / Rate, left = seconds - t;
    const double pressure = std::min({1.0, t / 0.03, left / 0.05});
    const double drift = 1 + 0.012 * shake(random.Noise() * 8) - 0.03 * std::exp(-t * 40);
    ball += (trill * (0.8 + 0.2 * pressure)) / Rate;
    const double chop = 0.62 + 0.38 * std::sin(2 * Pi * ball);
    low += 2790 * drift * (1 + 0.006 * std::sin(2 * Pi * ball)) / Rate;
    high += 3110 * drift * (1 - 0.006 * std::sin(2 * Pi * ball)) / Rate;
    const double tone =
        std::sin(2 * Pi * low) + 0.7 * std::sin(2 * Pi * high) + 0.12 * std::sin(4 * Pi * low);
    out[i] = pressure * (chop * tone * 0.5 + 0.35 * breath(random.Noise()));
  }
  return out;
}

void Finish(Signal &signal) {
  Reverberate(signal, 0.7, 0.3);
  Fade(signal, 0.003, 0.12);
  Level(signal, EventLevel);
  Fade(signal, 0.002, 0.01);
}

} // namespace

Signal Swoosh() {
  Random random(3);
  Signal out(Samples(0.4));
  // Two bands that rise and fall with the speed of the paper.
  BandPass low(900, 1.1), high(2400, 0.9);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    const double speed = std::pow(std::sin(Pi * std::pow(at, 0.55)), 1.4);
    BandPass lowNow(500 + 1300 * speed, 1.1), highNow(1400 + 3800 * speed, 0.9);
    lowNow.TakeMemoryOf(low);
    highNow.TakeMemoryOf(high);
    low = lowNow;
    high = highNow;
    const double noise = random.Noise();
    out[i] = speed * (low(noise) + 0.8 * high(noise));
  }
  Fade(out, 0.005, 0.08);
  Level(out, EventLevel);
  Fade(out, 0.003, 0.02);
  return out;
}

Signal ShortWhistle() {
  Random random(11);
  Signal out = Blast(0.38, 38, random);
  out.resize(Samples(0.6), 0.0);
  Finish(out);
  return out;
}

Signal LongWhistle() {
  Random random(12);
  Signal out = Blast(1.1, 31, random);
  out.resize(Samples(1.4), 0.0);
  Finish(out);
  return out;
}

Signal FinalWhistle() {
  Random random(13);
  Signal out;
  Add(out, Blast(0.32, 36, random), 0.0);
  Add(out, Blast(0.32, 36, random), 0.45);
  Add(out, Blast(1.0, 32, random), 0.9);
  out.resize(Samples(2.2), 0.0);
  Finish(out);
  return out;
}

} // namespace sounds
