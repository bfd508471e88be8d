// The theme and its sting: drums, bass and distorted guitars of plucked strings.

#include "assets/sounds/sounds.h"

#include <cmath>

namespace sounds {
namespace {

constexpr double Beat = 60.0 / 126.0; ///< seconds
constexpr double Bar = 4 * Beat;

/// Frequency of a MIDI note, Hz.
double Frequency(int note) { return 440.0 * std::pow(2.0, (note - 69) / 12.0); }

/// A plucked string: a burst of noise in a delay line as long as the period, low-passed on each pass. An
/// all-pass provides the fractional delay, or high notes would be flat.
Signal Pluck(int note, double seconds, double brightness, Random &random) {
  constexpr double AveragerDelay = 0.5, LeastRest = 0.1; // samples
  const double period = Rate / Frequency(note) - AveragerDelay;
  const double whole = std::floor(period - LeastRest), rest = period - whole;
  const double share = (1 - rest) / (1 + rest);
  Signal line(static_cast<std::size_t>(whole));
  LowPass pick(900 + 5200 * brightness);
  for (double &sample : line) sample = pick(random.Noise());
  const double loss = 0.9965 - 0.6 / (whole + 40);
  Signal out(Samples(seconds));
  std::size_t at = 0;
  double before = 0, dampedBefore = 0, delayed = 0;
  for (double &sample : out) {
    sample = line[at];
    const double damped = loss * 0.5 * (sample + before);
    before = sample;
    delayed = share * (damped - delayed) + dampedBefore;
    dampedBefore = damped;
    line[at] = delayed;
    at = (at + 1) % line.size();
  }
  Fade(out, 0.001, 0.03);
  return out;
}

/// An overdriven amplifier and its loudspeaker.
void Distort(Signal &signal, double drive, double tone) {
  LowPass speaker(tone), speakerAgain(tone);
  double block = 0;
  for (double &sample : signal) {
    const double shaped = std::tanh(drive * sample + 0.15) - std::tanh(0.15);
    block += 0.002 * (shaped - block); // removes the DC component
    sample = speakerAgain(speaker(shaped - block));
  }
}

Signal Kick() {
  Signal out(Samples(0.28));
  double phase = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double t = static_cast<double>(i) / Rate;
    phase += (46 + 110 * std::exp(-t * 38)) / Rate;
    out[i] = std::sin(2 * pi * phase) * std::exp(-t * 13);
  }
  Fade(out, 0.0015, 0.02);
  return out;
}

Signal Snare(Random &random) {
  Signal out(Samples(0.24));
  BandPass wires(2600, 0.7);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double t = static_cast<double>(i) / Rate;
    out[i] = 1.5 * wires(random.Noise()) * std::exp(-t * 19) +
             0.5 * std::sin(2 * pi * 192 * t) * std::exp(-t * 28);
  }
  Fade(out, 0.001, 0.02);
  return out;
}

Signal Hat(Random &random, double decay) {
  Signal out(Samples(0.12));
  BandPass metal(8800, 0.9);
  for (std::size_t i = 0; i < out.size(); ++i)
    out[i] = metal(random.Noise()) * std::exp(-static_cast<double>(i) / Rate * decay);
  Fade(out, 0.0005, 0.02);
  return out;
}

struct Note {
  double Beats; ///< length
  int Pitch;    ///< MIDI number, 0 for a rest
};

// Sixteen bars in E. A root for each bar; the tune twice, the second time with another ending.
constexpr int Roots[16] = {40, 40, 45, 45, 40, 40, 47, 47, 40, 40, 45, 45, 49, 45, 47, 40};
const std::vector<Note> Tune = {
    {1, 64},   {0.5, 66}, {0.5, 68}, {1.5, 71}, {0.5, 68}, {1, 66}, {0.5, 64}, {0.5, 66}, {2, 64},
    {1, 69},   {0.5, 71}, {0.5, 73}, {1.5, 76}, {0.5, 73}, {1, 71}, {0.5, 69}, {0.5, 68}, {2, 66},
    {1, 64},   {0.5, 66}, {0.5, 68}, {1.5, 71}, {0.5, 68}, {1, 66}, {0.5, 64}, {0.5, 66}, {2, 68},
    {0.5, 71}, {0.5, 71}, {1, 71},   {1, 73},   {1, 71},   {1, 68}, {1, 66},   {2, 0},
};
const std::vector<Note> TuneAgain = {
    {1, 64},   {0.5, 66}, {0.5, 68}, {1.5, 71}, {0.5, 68}, {1, 66},   {0.5, 64}, {0.5, 66}, {2, 64},
    {1, 69},   {0.5, 71}, {0.5, 73}, {1.5, 76}, {0.5, 73}, {1, 71},   {0.5, 73}, {0.5, 75}, {2, 76},
    {1, 80},   {0.5, 78}, {0.5, 76}, {2, 73},   {1, 76},   {0.5, 73}, {0.5, 71}, {2, 69},   {0.5, 71},
    {0.5, 71}, {1, 75},   {1, 78},   {1, 75},   {3, 76},   {1, 0},
};

void AddTune(Signal &track, const std::vector<Note> &tune, double start, Random &random) {
  double at = start;
  for (const Note &note : tune) {
    if (note.Pitch) Add(track, Pluck(note.Pitch, note.Beats * Beat * 0.97, 0.9, random), at, 0.9);
    at += note.Beats * Beat;
  }
}

/// A power chord: root, fifth, octave.
Signal Chord(int root, double seconds, Random &random) {
  Signal out;
  for (const int step : {0, 7, 12}) Add(out, Pluck(root + step, seconds, 0.8, random), 0, 0.6);
  return out;
}

} // namespace

Signal Theme() {
  constexpr int Bars = 16;
  Random random(77);
  Signal drums, bass, rhythm, lead;
  const Signal kick = Kick(), snare = Snare(random), hat = Hat(random, 60), open = Hat(random, 22);
  for (int bar = 0; bar < Bars; ++bar) {
    const double start = bar * Bar;
    const int root = Roots[bar];
    for (const double beat : {0.0, 1.5, 2.0}) Add(drums, kick, start + beat * Beat, 0.95);
    for (const double beat : {1.0, 3.0}) Add(drums, snare, start + beat * Beat, 0.7);
    for (int eighth = 0; eighth < 8; ++eighth) {
      Add(drums, eighth == 7 ? open : hat, start + eighth * Beat / 2, eighth % 2 ? 0.34 : 0.5);
      Add(bass, Pluck(root - 12 + (eighth == 6 ? 7 : 0), Beat * 0.48, 0.35, random),
          start + eighth * Beat / 2, 0.9);
    }
    if (bar % 4 == 3) {
      for (int hit = 0; hit < 4; ++hit) Add(drums, snare, start + (3 + hit * 0.25) * Beat, 0.35 + 0.1 * hit);
    }
    // Held, then chopped.
    Add(rhythm, Chord(root, Beat * 1.45, random), start, 1.0);
    for (const double beat : {1.5, 2.0, 2.5, 3.0, 3.5})
      Add(rhythm, Chord(root, Beat * 0.3, random), start + beat * Beat, 0.8);
  }
  AddTune(lead, Tune, 0, random);
  AddTune(lead, TuneAgain, 8 * Bar, random);
  Distort(rhythm, 9.0, 3300);
  Distort(lead, 6.0, 4600);
  Distort(bass, 2.0, 1500);
  Signal out;
  Add(out, drums, 0, 0.55);
  Add(out, bass, 0, 0.42);
  Add(out, rhythm, 0, 0.18);
  Add(out, lead, 0, 0.42);
  // The tail of the last bar wraps around to the first.
  const std::size_t length = Samples(Bars * Bar);
  for (std::size_t i = length; i < out.size(); ++i) out[i - length] += out[i];
  out.resize(length);
  ReverberateLoop(out, 0.9, 0.28);
  Level(out, ThemeLevel);
  Limit(out, ThemePeak);
  BeginAtSilence(out, 0.01); // too short to disturb the beat
  return out;
}

Signal Sting() {
  constexpr double Seconds = 1.5;
  Random random(9);
  Signal out;
  Add(out, Chord(40, 0.2, random), 0.0, 0.9);
  Add(out, Chord(40, 1.25, random), 0.2, 1.0);
  Add(out, Pluck(64, 1.2, 0.9, random), 0.2, 0.5);
  out.resize(Samples(Seconds));
  Distort(out, 9.0, 3600);
  Reverberate(out, 0.9, 0.35);
  Fade(out, 0.002, 0.5);
  Level(out, StingLevel);
  Limit(out, StingPeak);
  Fade(out, 0.002, 0.02);
  return out;
}

} // namespace sounds
