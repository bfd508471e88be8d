// Levels of wave files: length, peak, loudness, ends, and for loops the step at the seam compared with its
// neighbourhood.
//   sound_report [--recording] FILE...
// With --recording it fails if a file is silent or clips.

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <numeric>
#include <vector>

namespace {

constexpr double SilentBelow = -60.0; ///< dBFS, of a whole recording
constexpr double ClipsAbove = 0.999;  ///< of full scale

double Decibels(double value) { return value > 0 ? 20 * std::log10(value) : -120.0; }

double RootMeanSquare(const std::vector<double> &samples, std::size_t first, std::size_t count) {
  const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = begin + static_cast<std::ptrdiff_t>(count);
  return std::sqrt(std::inner_product(begin, end, begin, 0.0) / static_cast<double>(count));
}

/// The mean of all channels; `peak` is that of the loudest channel.
std::vector<double> Read(const char *path, int &rate, double &peak) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> file(sf_open(path, SFM_READ, &info), sf_close);
  if (!file || info.frames < 1) {
    std::fprintf(stderr, "%s: %s\n", path, file ? "is empty" : sf_strerror(nullptr));
    return {};
  }
  rate = info.samplerate;
  const auto channels = static_cast<std::size_t>(info.channels);
  std::vector<double> all(static_cast<std::size_t>(info.frames) * channels);
  sf_readf_double(file.get(), all.data(), info.frames);
  for (const double sample : all) peak = std::max(peak, std::abs(sample));
  std::vector<double> mixed;
  for (std::size_t i = 0; i < all.size(); i += channels) {
    mixed.push_back(std::accumulate(&all[i], &all[i] + channels, 0.0) / info.channels);
  }
  return mixed;
}

bool Report(const char *path, bool recording) {
  int rate = 0;
  double peak = 0;
  const std::vector<double> samples = Read(path, rate, peak);
  if (samples.empty()) return false;
  std::vector<double> steps;
  for (std::size_t i = 1; i < samples.size(); ++i) steps.push_back(std::abs(samples[i] - samples[i - 1]));
  const double level = Decibels(RootMeanSquare(samples, 0, samples.size()));
  const double mean =
      std::accumulate(samples.begin(), samples.end(), 0.0) / static_cast<double>(samples.size());
  std::printf("%-12s %6.2f s  peak %6.1f dB  RMS %6.1f dB  mean %+.4f  ends %.4f %.4f",
              std::filesystem::path(path).filename().c_str(), static_cast<double>(samples.size()) / rate,
              Decibels(peak), level, mean, std::abs(samples.front()), std::abs(samples.back()));
  const std::size_t tenth = static_cast<std::size_t>(rate) / 10;
  if (samples.size() > 50 * tenth && !recording) {
    std::ranges::sort(steps);
    std::printf("  seam step %.4f (99.9 %% of steps below %.4f), level %.1f dB to %.1f dB",
                std::abs(samples.front() - samples.back()), steps[steps.size() * 999 / 1000],
                Decibels(RootMeanSquare(samples, samples.size() - tenth, tenth)),
                Decibels(RootMeanSquare(samples, 0, tenth)));
  }
  std::printf("\n");
  if (!recording) return true;
  if (level < SilentBelow) std::printf("it is silent\n");
  if (peak > ClipsAbove) std::printf("it clips\n");
  return level >= SilentBelow && peak <= ClipsAbove;
}

} // namespace

int main(int argc, char **argv) {
  const bool recording = argc > 1 && std::strcmp(argv[1], "--recording") == 0;
  const int first = recording ? 2 : 1;
  if (first >= argc) {
    std::fprintf(stderr, "usage: sound_report [--recording] FILE...\n");
    return 2;
  }
  bool good = true;
  for (int i = first; i < argc; ++i) good = Report(argv[i], recording) && good;
  return good ? 0 : 1;
}
