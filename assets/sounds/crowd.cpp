// Crowds: many voices, each a train of glottal pulses through the formants of a vowel, and the air between
// them.

#include "assets/sounds/sounds.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace sounds {
namespace {

struct Vowel {
  double First, Second, Third; ///< formants, Hz
};
constexpr Vowel Ah{730, 1180, 2500};
constexpr Vowel Eh{560, 1750, 2550};
constexpr Vowel Oh{480, 880, 2450};
constexpr Vowel Oo{320, 760, 2300};

/// Vocal effort: a shout has brighter pulses and stronger high formants than talk.
struct Effort {
  double Brightness;    ///< corner frequency of the pulses, Hz
  double Second, Third; ///< weights of the higher formants
};
constexpr Effort Talk{1400, 0.6, 0.3};
constexpr Effort Yell{3400, 1.0, 0.8};

/// One voice. Pitch (Hz), loudness (0 to 1) and vowel (0 the first, 1 the second) are functions of time from
/// 0 to 1.
Signal Voice(double seconds, Random &random, const Effort &effort, const Vowel &from, const Vowel &to,
             const std::function<double(double)> &pitch, const std::function<double(double)> &loudness) {
  constexpr std::size_t Block = 256; ///< samples with constant formants
  const double throat = random.Between(0.9, 1.15);
  Signal out(Samples(seconds), 0.0);
  double phase = random.Next(), wobble = random.Between(0, 2 * pi);
  const double wobbleRate = random.Between(4.5, 6.5), wobbleDepth = random.Between(0.006, 0.02);
  LowPass tilt(effort.Brightness);
  BandPass bands[] = {{from.First, 5}, {from.Second, 7}, {from.Third, 8}};
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    if (i % Block == 0) {
      const double share = at;
      const auto mix = [&](double a, double b) { return (a + (b - a) * share) * throat; };
      // Keep the state of the filters, or they would click.
      const auto retune = [](BandPass &band, double frequency, double quality) {
        BandPass next(frequency, quality);
        next.CopyState(band);
        band = next;
      };
      retune(bands[0], mix(from.First, to.First), 5);
      retune(bands[1], mix(from.Second, to.Second), 7);
      retune(bands[2], mix(from.Third, to.Third), 8);
    }
    wobble += 2 * pi * wobbleRate / Rate;
    phase += pitch(at) * (1 + wobbleDepth * std::sin(wobble) + 0.004 * random.Noise()) / Rate;
    phase -= std::floor(phase);
    const double source = tilt(2 * phase - 1) + 0.05 * random.Noise();
    out[i] = loudness(at) *
             (bands[0](source) + effort.Second * bands[1](source) + effort.Third * bands[2](source));
  }
  return out;
}

/// Breath: noise in the bands of crowds.
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
      Add(out, clap, at, loud * std::sin(pi * at / seconds));
    }
  }
  out.resize(Samples(seconds));
  return out;
}

/// A two-finger whistle.
Signal Fingers(Random &random) {
  const double low = random.Between(1500, 2000), high = low * random.Between(1.25, 1.6),
               seconds = random.Between(0.35, 0.7);
  Signal out(Samples(seconds));
  double phase = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    phase += (low + (high - low) * std::sin(pi * std::min(1.0, at * 1.3))) / Rate;
    out[i] = std::sin(2 * pi * phase) * std::pow(std::sin(pi * at), 0.6);
  }
  return out;
}

/// What a crowd shouts together.
struct Shouting {
  int Voices;
  Effort Throats;
  Vowel From, To;
  double Lowest, Highest; ///< pitch at the start, Hz
  double Bend;            ///< relative change of pitch
  double Swell, End;      ///< seconds until all have started, and until all are silent
  double AirLow, AirHigh; ///< middle of the breath's two bands, Hz
};

Signal Shout(double seconds, std::uint32_t seed, const Shouting &what) {
  Random random(seed);
  Signal out(Samples(seconds), 0.0);
  for (int voice = 0; voice < what.Voices; ++voice) {
    const double start = random.Between(0.0, what.Swell),
                 length = seconds - start - random.Between(0.0, what.End);
    const double base = random.Between(what.Lowest, what.Highest),
                 bend = what.Bend * random.Between(0.5, 1.4);
    const Signal one = Voice(
        length, random, what.Throats, what.From, what.To,
        [&](double at) { return base * (1 + bend * std::sin(at * pi * 0.5)); },
        [&](double at) { return std::min(1.0, at * 9) * std::pow(1 - at, 0.8); });
    Add(out, one, start, random.Between(0.3, 1.0));
  }
  out.resize(Samples(seconds));
  const Signal air = Air(seconds, random, what.AirLow, what.AirHigh);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double at = static_cast<double>(i) / static_cast<double>(out.size());
    out[i] += air[i] * std::min(1.0, at * 5) * (1 - at);
  }
  return out;
}

void Finish(Signal &signal) {
  Reverberate(signal, 1.3, 0.9);
  Fade(signal, 0.03, 0.5);
  Level(signal, EventLevel);
  Limit(signal, EventPeak);
  Fade(signal, 0.004, 0.02);
}

/// Thousands of distant, unintelligible voices: bands of noise, each modulated at the rate of syllables, with
/// a slow irregular modulation of the whole.
Signal Babble(double seconds, Random &random) {
  constexpr int Bands = 14;
  constexpr double Lowest = 200, Highest = 3800; // Hz
  constexpr double SyllableRate = 3.5, BreathRate = 0.4;
  constexpr double SyllableDepth = 34, BreathDepth = 30; // undo the slow filters' loss
  Signal out(Samples(seconds), 0.0);
  for (int band = 0; band < Bands; ++band) {
    const double middle = Lowest * std::pow(Highest / Lowest, band / (Bands - 1.0));
    const double gain = std::pow(middle / 500, middle < 500 ? 0.3 : -0.45);
    BandPass voice(middle, 3);
    LowPass syllable(SyllableRate), smooth(3 * SyllableRate);
    for (double &sample : out) {
      const double loud = std::exp(SyllableDepth * smooth(syllable(random.Noise())));
      sample += gain * loud * voice(random.Noise());
    }
  }
  LowPass breath(BreathRate);
  for (double &sample : out) sample *= 1 + 0.4 * std::tanh(BreathDepth * breath(random.Noise()));
  return out;
}

/// Individual voices: talk, and occasional shouts.
Signal Calls(double seconds, Random &random, int people) {
  const Vowel vowels[] = {Ah, Eh, Oh, Oo};
  Signal out(Samples(seconds), 0.0);
  for (int call = 0; call < people; ++call) {
    const bool yells = call % 3 == 0;
    const double length = random.Between(0.25, yells ? 0.9 : 1.1),
                 base = yells ? random.Between(170, 380) : random.Between(105, 260);
    const Vowel &from = vowels[static_cast<int>(random.Between(0, 3.999))],
                &to = vowels[static_cast<int>(random.Between(0, 3.999))];
    const double bend = random.Between(-0.25, 0.3);
    const Signal one = Voice(
        length, random, yells ? Yell : Talk, from, to, [&](double at) { return base * (1 + bend * at); },
        [](double at) { return std::sin(pi * at); });
    Add(out, one, random.Between(0, seconds - length), random.Between(0.15, yells ? 0.6 : 0.7));
  }
  out.resize(Samples(seconds));
  return out;
}

/// Anticipation in a part of the stand: voices that rise and fall together.
Signal Wave(Random &random) {
  constexpr double Seconds = 3.6;
  constexpr int People = 40;
  Signal out;
  for (int person = 0; person < People; ++person) {
    const double base = random.Between(120, 330), length = random.Between(1.6, 2.8);
    const Signal one = Voice(
        length, random, Yell, Oh, Ah, [&](double at) { return base * (1 + 0.22 * std::sin(pi * at)); },
        [](double at) { return std::pow(std::sin(pi * std::pow(at, 0.8)), 1.5); });
    Add(out, one, random.Between(0, Seconds - length), random.Between(0.2, 0.6));
  }
  return out;
}

/// A nearby shout of a word or two.
Signal Shouter(Random &random) {
  const Vowel vowels[] = {Ah, Eh, Oh};
  const double base = random.Between(150, 340);
  const int words = random.Next() < 0.4 ? 2 : 1;
  Signal out;
  double at = 0;
  for (int word = 0; word < words; ++word) {
    const double length = random.Between(0.28, 0.6), rise = random.Between(0.1, 0.35);
    const Vowel &from = vowels[static_cast<int>(random.Between(0, 2.999))],
                &to = vowels[static_cast<int>(random.Between(0, 2.999))];
    const Signal one = Voice(
        length, random, Yell, from, to, [&](double t) { return base * (1 + rise * std::sin(pi * t * 0.8)); },
        [](double t) { return std::min(1.0, t * 8) * std::pow(1 - t, 0.6); });
    Add(out, one, at);
    at += length + random.Between(0.05, 0.15);
  }
  return out;
}

/// Loudness of a restless stand, a factor around 1 for each sample: rises toward each `peak` (seconds) and
/// falls off more slowly.
Signal Swells(double seconds, const std::vector<double> &peaks) {
  constexpr double Quiet = 0.8, Rise = 1.2, Fall = 1.9, Height = 0.62; // seconds; share of the quiet level
  Signal out(Samples(seconds), Quiet);
  for (const double peak : peaks) {
    for (std::size_t i = 0; i < out.size(); ++i) {
      const double from = static_cast<double>(i) / Rate - peak, width = from < 0 ? Rise : Fall;
      out[i] += Quiet * Height * std::exp(-from * from / (width * width));
    }
  }
  return out;
}

} // namespace

Signal Crowd(double seconds, std::uint32_t seed) {
  constexpr double Overlap = 1.5;
  constexpr double PeakOfWave = 1.5; // seconds from its start
  constexpr int People = 220, Waves = 3, Shouters = 9, Handfuls = 3, Whistlers = 3;
  Random random(seed);
  const double whole = seconds + Overlap;
  Signal out;
  Add(out, Babble(whole, random), 0, 0.6);
  Add(out, Calls(whole, random, People), 0, 1.2);
  // In turn, so that something is always audible.
  std::vector<double> peaks;
  Signal waves;
  for (int wave = 0; wave < Waves; ++wave) {
    const double start = (wave + random.Between(0.05, 0.4)) * seconds / Waves;
    Add(waves, Wave(random), start, random.Between(0.4, 0.75));
    peaks.push_back(start + PeakOfWave);
  }
  const Signal swells = Swells(whole, peaks);
  for (std::size_t i = 0; i < std::min(out.size(), swells.size()); ++i) out[i] *= swells[i];
  Add(out, waves, 0, 1.0);
  for (int shouter = 0; shouter < Shouters; ++shouter) {
    Add(out, Shouter(random), (shouter + random.Between(0.0, 0.8)) * seconds / Shouters,
        random.Between(1.2, 2.5));
  }
  for (int handful = 0; handful < Handfuls; ++handful) {
    Add(out, Claps(2.5, random, 9), (handful + random.Between(0.0, 0.4)) * seconds / Handfuls, 2.0);
  }
  for (int whistler = 0; whistler < Whistlers; ++whistler) {
    Add(out, Fingers(random), random.Between(0, seconds), random.Between(0.03, 0.07));
  }
  out.resize(Samples(whole));
  CloseLoop(out, Overlap);
  ReverberateLoop(out, 1.6, 0.5);
  Level(out, CrowdLevel);
  Limit(out, CrowdPeak);
  BeginAtSilence(out, seconds);
  return out;
}

Signal Cheer() {
  Signal out = Shout(2.4, 21, {46, Yell, Eh, Ah, 150, 360, 0.22, 0.5, 0.5, 900, 2400});
  Finish(out);
  return out;
}

Signal LargeCheer() {
  constexpr double Seconds = 3.0;
  Signal out = Shout(Seconds, 33, {64, Yell, Eh, Ah, 150, 400, 0.28, 0.6, 0.6, 900, 2400});
  Random random(5);
  Add(out, Claps(Seconds, random, 22), 0, 0.5);
  for (int i = 0; i < 6; ++i) Add(out, Fingers(random), random.Between(0.3, 2.1), random.Between(0.10, 0.26));
  out.resize(Samples(Seconds));
  Finish(out);
  return out;
}

Signal Boo() {
  Signal out = Shout(2.1, 45, {60, Talk, Oh, Oo, 95, 180, -0.36, 0.25, 0.4, 330, 900});
  Finish(out);
  return out;
}

} // namespace sounds
