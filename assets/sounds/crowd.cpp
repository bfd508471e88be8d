// Crowds: many voices, each a train of glottal pulses through the formants of a vowel, and the air between
// them.

#include "assets/sounds/sounds.h"

#include <cmath>

namespace sounds {
namespace {

struct Vowel {
  double First, Second, Third; ///< formants, Hz
};
constexpr Vowel Ah{730, 1180, 2500};
constexpr Vowel Eh{560, 1750, 2550};
constexpr Vowel Oh{480, 880, 2450};
constexpr Vowel Oo{320, 760, 2300};

/// One voice. Pitch (Hz), loudness (0 to 1) and vowel (0 the first, 1 the second) are told at each moment of
/// 0 to 1.
Signal Voice(double seconds, Random &random, const Vowel &from, const Vowel &to,
             const std::function<double(double)> &pitch, const std::function<double(double)> &loudness) {
  constexpr std::size_t Block = 256; ///< samples for which the formants stand still
  const double throat = random.Between(0.9, 1.15);
  Signal out(Samples(seconds), 0.0);
  double phase = random.Next(), wobble = random.Between(0, 2 * Pi);
  const double wobbleRate = random.Between(4.5, 6.5), wobbleDepth = random.Between(0.006, 0.02);
  LowPass tilt(1400);
  BandPass bands[] = {{from.First, 5}, {from.Second, 7}, {from.Third, 8}};
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    if (i % Block == 0) {
      const double share = at;
      const auto mix = [&](double a, double b) { return (a + (b - a) * share) * throat; };
      // New filters would click; the old ones' memory goes on in them.
      const auto retune = [](BandPass &band, double frequency, double quality) {
        BandPass next(frequency, quality);
        next.TakeMemoryOf(band);
        band = next;
      };
      retune(bands[0], mix(from.First, to.First), 5);
      retune(bands[1], mix(from.Second, to.Second), 7);
      retune(bands[2], mix(from.Third, to.Third), 8);
    }
    wobble += 2 * Pi * wobbleRate / Rate;
    phase += pitch(at) * (1 + wobbleDepth * std::sin(wobble) + 0.004 * random.Noise()) / Rate;
    phase -= std::floor(phase);
    const double source = tilt(2 * phase - 1) + 0.05 * random.Noise();
    out[i] = loudness(at) * (bands[0](source) + 0.6 * bands[1](source) + 0.3 * bands[2](source));
  }
  return out;
}

/// Air: noise in the bands where crowds are.
Signal Air(double seconds, Random &random, double low, double high) {
  Signal out(Samples(seconds));
  BandPass a(low, 0.7), b(high, 0.6);
  for (double &sample : out) {
    const double noise = random.Noise();
    sample = a(noise) + 0.5 * b(noise);
  }
  return out;
}

Signal Claps(double seconds, Random &random, int people) {
  Signal out(Samples(seconds), 0.0);
  for (int person = 0; person < people; ++person) {
    const double pace = random.Between(0.17, 0.26), tone = random.Between(900, 2200),
                 loud = random.Between(0.2, 1.0);
    for (double at = random.Between(0.0, 0.5); at < seconds - 0.1; at += pace * random.Between(0.9, 1.1)) {
      BandPass palm(tone * random.Between(0.9, 1.1), 1.6);
      Signal clap(Samples(0.03));
      for (std::size_t i = 0; i < clap.size(); ++i)
        clap[i] = palm(random.Noise()) * std::exp(-static_cast<double>(i) / 180);
      Add(out, clap, at, loud * std::sin(Pi * at / seconds));
    }
  }
  out.resize(Samples(seconds));
  return out;
}

/// Somebody whistles on two fingers.
Signal Fingers(Random &random) {
  const double low = random.Between(1500, 2000), high = low * random.Between(1.25, 1.6),
               seconds = random.Between(0.35, 0.7);
  Signal out(Samples(seconds));
  double phase = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    phase += (low + (high - low) * std::sin(Pi * std::min(1.0, at * 1.3))) / Rate;
    out[i] = std::sin(2 * Pi * phase) * std::pow(std::sin(Pi * at), 0.6);
  }
  return out;
}

Signal Shout(double seconds, std::uint32_t seed, int voices, const Vowel &from, const Vowel &to,
             double lowest, double highest, double rise, double swell, double fall) {
  Random random(seed);
  Signal out(Samples(seconds), 0.0);
  for (int voice = 0; voice < voices; ++voice) {
    const double start = random.Between(0.0, swell), length = seconds - start - random.Between(0.0, fall);
    const double base = random.Between(lowest, highest), bend = rise * random.Between(0.5, 1.4);
    const Signal one = Voice(
        length, random, from, to, [&](double at) { return base * (1 + bend * std::sin(at * Pi * 0.5)); },
        [&](double at) { return std::min(1.0, at * 9) * std::pow(1 - at, 0.8); });
    Add(out, one, start, random.Between(0.3, 1.0));
  }
  out.resize(Samples(seconds));
  const Signal air = Air(seconds, random, 700, 2100);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    out[i] += 1.1 * air[i] * std::min(1.0, at * 5) * (1 - at);
  }
  return out;
}

void Finish(Signal &signal, double decibels) {
  Reverberate(signal, 1.3, 0.9);
  Fade(signal, 0.03, 0.5);
  Level(signal, decibels);
  Fade(signal, 0.004, 0.02);
}

constexpr double EventLevel = -15.0; ///< dB
constexpr double LoopLevel = -27.0;

} // namespace

Signal Crowd(double seconds, std::uint32_t seed) {
  constexpr double Overlap = 1.5;
  Random random(seed);
  const double whole = seconds + Overlap;
  Signal out = Air(whole, random, 420, 1300);
  // The air breathes, at no measure that an ear could count.
  double breath = 0;
  LowPass slow(0.5);
  for (double &sample : out) {
    breath = slow(random.Noise() * 60);
    sample *= 0.9 + 0.25 * std::tanh(breath);
  }
  constexpr int Calls = 170;
  for (int call = 0; call < Calls; ++call) {
    const double length = random.Between(0.3, 1.1), base = random.Between(105, 290);
    const Vowel *vowels[] = {&Ah, &Eh, &Oh, &Oo};
    const Vowel &from = *vowels[static_cast<int>(random.Between(0, 3.999))],
                &to = *vowels[static_cast<int>(random.Between(0, 3.999))];
    const double bend = random.Between(-0.2, 0.25);
    const Signal one = Voice(
        length, random, from, to, [&](double at) { return base * (1 + bend * at); },
        [](double at) { return std::sin(Pi * at); });
    Add(out, one, random.Between(0, whole - length), random.Between(0.15, 0.7));
  }
  out.resize(Samples(whole));
  CloseLoop(out, Overlap);
  ReverberateLoop(out, 1.6, 1.0);
  Level(out, LoopLevel);
  return out;
}

Signal Cheer() {
  Signal out = Shout(2.4, 21, 46, Eh, Ah, 150, 330, 0.22, 0.5, 0.5);
  Finish(out, EventLevel);
  return out;
}

Signal LargeCheer() {
  constexpr double Seconds = 3.0;
  Signal out = Shout(Seconds, 33, 64, Eh, Ah, 150, 360, 0.28, 0.6, 0.6);
  Random random(5);
  Add(out, Claps(Seconds, random, 22), 0, 0.5);
  for (int i = 0; i < 6; ++i) Add(out, Fingers(random), random.Between(0.3, 2.1), random.Between(0.10, 0.26));
  out.resize(Samples(Seconds));
  Finish(out, EventLevel);
  return out;
}

Signal Boo() {
  Signal out = Shout(2.1, 45, 48, Oo, Oo, 85, 165, -0.28, 0.25, 0.4);
  Finish(out, EventLevel);
  return out;
}

} // namespace sounds
