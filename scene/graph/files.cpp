// The cache of model and texture files.

#include "platform/files.h"
#include "scene/graph/parsing.h"
#include "scene/graph/scene_error.h"

#include <map>

namespace {

constexpr std::uintmax_t LargestModel = 16UL << 20, LargestTexture = 64UL << 20; ///< bytes

/// A parsed file.
template <class Data> struct Entry {
  FileStamp Stamp;
  Ref<const Data> Content;
};

template <class Data> std::map<std::filesystem::path, Entry<Data>> &Entries() {
  static std::map<std::filesystem::path, Entry<Data>> entries;
  return entries;
}

/// Parses a file. Errors name the file.
template <class Data>
Data Parse(const std::filesystem::path &file, std::uintmax_t largest, Data (*parse)(std::span<const char>)) {
  const std::vector<char> bytes = ReadFile(file, largest);
  try {
    return parse(bytes);
  } catch (const SceneError &error) {
    RefuseFile(file, error.what());
  }
}

/// Parses a file, or returns the cached result if it hasn't changed.
template <class Data>
Ref<const Data> ReadOnce(const std::filesystem::path &file, std::uintmax_t largest,
                         Data (*parse)(std::span<const char>)) {
  try {
    const FileStamp stamp = StampOf(file);
    Entry<Data> &entry = Entries<Data>()[file];
    if (!entry.Content || entry.Stamp != stamp) {
      entry = {stamp, std::make_shared<const Data>(Parse(file, largest, parse))};
    }
    return entry.Content;
  } catch (const FileError &error) {
    throw SceneError(error.what());
  }
}

} // namespace

Ref<const MeshData> ReadMeshFile(const std::filesystem::path &file) {
  return ReadOnce<MeshData>(file, LargestModel, ParseMesh);
}

Ref<const ImageData> ReadImageFile(const std::filesystem::path &file) {
  return ReadOnce<ImageData>(file, LargestTexture, ParseImage);
}

void CheckMeshFile(const std::filesystem::path &file) {
  CheckOnce(file, [&] { Parse(file, LargestModel, PlainMesh); });
}

void CheckImageFile(const std::filesystem::path &file) {
  CheckOnce(file, [&] { Parse(file, LargestTexture, CheckBitmap); });
}

void ClearFileCache() {
  Entries<MeshData>().clear();
  Entries<ImageData>().clear();
}
