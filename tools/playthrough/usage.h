#pragma once

// What a running program holds, sampled regularly.

#include <array>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

class Usage {
public:
  /// Samples the process until `Stop`.
  /// @param display  its X display; empty for the default
  /// @param record   file to which each sample is written as it is taken
  Usage(pid_t process, const std::string &display, const std::filesystem::path &record);

  void Stop() { sampler_ = {}; } ///< must come before the process ends

  /// Prints a table of the samples after a warm-up.
  /// @returns false if something has grown, or if there are too few samples to tell
  bool Report() const;

private:
  using Sample = std::array<double, 5>; ///< one figure of each kind

  // The sampler's until it is stopped.
  std::vector<Sample> samples_;
  bool lost_ = false; ///< the display no longer answers
  std::jthread sampler_;
};
