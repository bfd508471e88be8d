#pragma once

#include <filesystem>

/// The directory of the built game, beside that of the tools.
inline std::filesystem::path GameDirectory() {
  return std::filesystem::weakly_canonical("/proc/self/exe").parent_path().parent_path() / "game";
}
