#include "platform/files.h"

#include <map>
#include <system_error>

void RefuseFile(const std::filesystem::path &file, const std::string &why) {
  throw FileError('"' + file.filename().string() + "\": " + why);
}

FileStamp StampOf(const std::filesystem::path &file) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (!std::filesystem::exists(status)) RefuseFile(file, "can't be found");
  if (!std::filesystem::is_regular_file(status)) RefuseFile(file, "not a regular file");
  FileStamp stamp;
  stamp.Time = std::filesystem::last_write_time(file, error);
  if (!error) stamp.Size = std::filesystem::file_size(file, error);
  if (error) RefuseFile(file, error.message());
  return stamp;
}

OpenedFile OpenFile(const std::filesystem::path &file, std::uintmax_t largest) {
  const std::uintmax_t size = StampOf(file).Size;
  if (size == 0) RefuseFile(file, "is empty");
  if (size > largest) {
    RefuseFile(file, std::to_string(size) + " bytes is too large, the limit is " + std::to_string(largest));
  }
  OpenedFile opened{size, std::ifstream(file, std::ios::binary)};
  if (!opened.Stream) RefuseFile(file, "can't be opened");
  return opened;
}

std::vector<char> ReadFile(const std::filesystem::path &file, std::uintmax_t largest) {
  OpenedFile opened = OpenFile(file, largest);
  std::vector<char> bytes(opened.Size);
  if (!opened.Stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
    RefuseFile(file, "can't be read");
  return bytes;
}

void CheckOnce(const std::filesystem::path &file, const std::function<void()> &check) {
  static std::map<std::filesystem::path, FileStamp> passed;
  const FileStamp stamp = StampOf(file);
  if (const auto known = passed.find(file); known != passed.end() && known->second == stamp) return;
  check();
  passed[file] = stamp;
}
