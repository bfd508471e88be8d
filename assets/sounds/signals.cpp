// Whistles, and paper over felt.

#include "assets/sounds/sounds.h"

#include <algorithm>
#include <cmath>

namespace sounds {
namespace {

/// A pea whistle: two beating tones with breath noise, interrupted and bent by the ball, which rolls at an
/// irregular rate.
Signal Blast(double seconds, double trill, Random &random) {
  constexpr double Low = 2640, High = 3020;            // tones, Hz
  constexpr double Bend = 0.028;                       // relative change of pitch by the ball
  constexpr double LeastOpen = 0.12;                   // minimum amplitude, while the ball covers the hole
  constexpr double StartsFlat = 0.09, EndsFlat = 0.05; // relative pitch
  constexpr double Attack = 0.028, Release = 0.06;     // seconds
  Signal out(Samples(seconds));
  BandPass breath(3300, 0.8), hiss(6400, 0.7);
  LowPass hand(5), flutter(140), pace(9);
  double low = 0, high = 0, ball = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double t = static_cast<double>(i) / Rate, left = seconds - t;
    const double pressure = std::min({1.0, t / Attack, left / Release});
    ball += trill * (0.75 + 0.25 * pressure) * (1 + 6 * pace(random.Noise())) / Rate;
    const double roll = std::sin(2 * pi * ball);
    const double open = LeastOpen + (1 - LeastOpen) * std::pow(0.5 + 0.5 * roll, 1.3);
    const double pitch = (1 - StartsFlat * std::exp(-t / 0.022)) * (1 - EndsFlat * std::exp(-left / 0.03)) *
                         (1 + 0.25 * hand(random.Noise()) + 0.11 * flutter(random.Noise()));
    low += Low * pitch * (1 + Bend * roll) / Rate;
    high += High * pitch * (1 - 0.6 * Bend * roll) / Rate;
    const double tone = std::sin(2 * pi * low) + 0.6 * std::sin(2 * pi * high) +
                        0.16 * std::sin(4 * pi * low) + 0.06 * std::sin(6 * pi * high);
    // Where the ball blocks the tone, the air becomes noise.
    const double air = random.Noise();
    const double rush = (1.3 - 0.6 * open) * (1 + 1.6 * std::exp(-t / 0.03));
    out[i] = pressure * (0.5 * open * tone + rush * (0.36 * breath(air) + 0.22 * hiss(air)));
  }
  return out;
}

void Finish(Signal &signal) {
  Reverberate(signal, 0.7, 0.3);
  Fade(signal, 0.003, 0.12);
  Level(signal, WhistleLevel);
  Limit(signal, WhistlePeak);
  Fade(signal, 0.002, 0.01);
}

/// The paper stops on the felt: a soft, low knock and a final rub.
Signal Settle(Random &random) {
  Signal out(Samples(0.2));
  LowPass felt(300), feltAgain(600);
  double phase = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double t = static_cast<double>(i) / Rate;
    phase += (118 + 120 * std::exp(-t / 0.02)) / Rate;
    const double size = std::min(1.0, t / 0.008) * std::exp(-t / 0.045);
    out[i] = size * (std::sin(2 * pi * phase) + 2.2 * feltAgain(felt(random.Noise())));
  }
  Fade(out, 0.001, 0.04);
  return out;
}

} // namespace

Signal Swoosh() {
  constexpr double Seconds = 0.4, SettlesAt = 0.3;
  Random random(3);
  Signal out(Samples(Seconds));
  // Two bands that rise and fall with the speed of the paper.
  BandPass low(900, 1.1), high(2400, 0.9);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    const double speed = std::pow(std::sin(pi * std::pow(at, 0.55)), 1.4);
    BandPass lowNow(500 + 1300 * speed, 1.1), highNow(1400 + 3800 * speed, 0.9);
    lowNow.CopyState(low);
    highNow.CopyState(high);
    low = lowNow;
    high = highNow;
    const double noise = random.Noise();
    out[i] = speed * (low(noise) + 0.8 * high(noise));
  }
  Fade(out, 0.005, 0.08);
  Add(out, Settle(random), SettlesAt, 0.4);
  Level(out, EventLevel);
  Limit(out, EventPeak);
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
