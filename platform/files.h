#pragma once

// The game's own files. Whatever is wrong with one, it is told with the file's name, and before the file is
// read as far as its size is wrong.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// A file that the game needs and can't use: its name and why.
class FileError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// @throws FileError  that names the file and says why
[[noreturn]] void RefuseFile(const std::filesystem::path &file, const std::string &why);

/// All bytes of a file.
/// @param largest  bytes beyond which it isn't read
/// @throws FileError  if it is missing, empty, too large, no plain file or can't be read
std::vector<char> ReadFile(const std::filesystem::path &file, std::uintmax_t largest);

/// By what a change of a file is known.
struct FileStamp {
  std::filesystem::file_time_type Time;
  std::uintmax_t Size = 0;
  bool operator==(const FileStamp &) const = default;
};

/// @throws FileError  if the file is missing or no plain file
FileStamp StampOf(const std::filesystem::path &file);

/// Runs a check of a file; does nothing if the check has passed before and the file hasn't changed since.
void CheckOnce(const std::filesystem::path &file, const std::function<void()> &check);
