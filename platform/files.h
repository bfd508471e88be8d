#pragma once

// Reading the game's own files. Every error names the file. The size is checked before the file is read.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// A file that the game needs and can't use; says which and why.
class FileError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// @throws FileError  always: names the file and says why
[[noreturn]] void RefuseFile(const std::filesystem::path &file, const std::string &why);

/// A file to read from its beginning.
struct OpenedFile {
  std::uintmax_t Size; ///< bytes, when it was opened
  std::ifstream Stream;
};

/// @param largest  maximum size, bytes
/// @throws FileError  if it is missing, empty, too large, not a regular file or can't be opened
OpenedFile OpenFile(const std::filesystem::path &file, std::uintmax_t largest);

/// All bytes of a file.
/// @param largest  maximum size, bytes
/// @throws FileError  if it can't be opened or read
std::vector<char> ReadFile(const std::filesystem::path &file, std::uintmax_t largest);

/// Time and size of a file, to detect a change.
struct FileStamp {
  std::filesystem::file_time_type Time;
  std::uintmax_t Size = 0;
  bool operator==(const FileStamp &) const = default;
};

/// @throws FileError  if the file is missing or not a regular file
FileStamp StampOf(const std::filesystem::path &file);

/// Runs a check of a file, unless it has passed before and the file hasn't changed since.
void CheckOnce(const std::filesystem::path &file, const std::function<void()> &check);
