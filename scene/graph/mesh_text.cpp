// Mesh files are text with nested objects. The declared numbers of vertices, faces and normals, and all
// indices, are checked against the contents. The result is rewritten in the simplest form for the mesh
// library, which trusts the declarations and misreads unusual files.

#include "scene/graph/parsing.h"
#include "scene/graph/scene_error.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view Header = "xof 0303txt 0032", OlderHeader = "xof 0302txt 0032";
constexpr char Separator = ';';
constexpr std::size_t MostVertices = 200000, MostFaces = 200000; ///< of all meshes of a file
constexpr std::size_t MostMeshes = 100, MostFrames = 100, MostMaterials = 100;
constexpr std::size_t DeepestFrame = 16;
constexpr std::size_t LongestNumber = 24; ///< characters
constexpr double LargestNumber = 1e6;     ///< of coordinates, colours and other values

bool IsBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSeparator(char c) { return c == ';' || c == ','; }
bool EndsToken(char c) { return IsSeparator(c) || c == '{' || c == '}'; }

class MeshText {
public:
  explicit MeshText(std::string_view text) : text_(text) {}

  std::string Plain() {
    if (!text_.starts_with(Header) && !text_.starts_with(OlderHeader)) Fail("wrong signature");
    at_ = Header.size();
    SkipLine();
    plain_.reserve(text_.size());
    plain_ = Header;
    plain_ += '\n';
    while (true) {
      const std::string_view kind = Token();
      if (kind.empty()) return std::move(plain_);
      if (kind == "template") {
        Template();
      } else if (kind == "Header") {
        SkipObject();
      } else if (kind == "Material") {
        SharedMaterial();
      } else if (kind == "Mesh") {
        Mesh();
      } else if (kind == "Frame") {
        Frame(1);
      } else {
        Fail("\"" + Shown(kind) + "\" is unknown here");
      }
    }
  }

private:
  [[noreturn]] void Fail(const std::string &why) const {
    const auto line = 1 + std::ranges::count(text_.substr(0, at_), '\n');
    throw SceneError("not a mesh file: line " + std::to_string(line) + ": " + why);
  }

  static std::string Shown(std::string_view token) {
    constexpr std::size_t Longest = 30;
    std::string shown;
    for (const char c : token.substr(0, Longest)) shown += c > ' ' && c <= '~' ? c : '?';
    return shown;
  }

  // Tokens.

  char Next(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }

  void SkipLine() {
    while (at_ < text_.size() && text_[at_] != '\n' && text_[at_] != '\r') ++at_;
  }

  void SkipBlanks() {
    while (at_ < text_.size()) {
      if (IsBlank(text_[at_])) {
        ++at_;
      } else if (text_[at_] == '#' || (text_[at_] == '/' && Next(1) == '/')) {
        SkipLine();
      } else {
        return;
      }
    }
  }

  /// A word or one of the four separators; nothing at the end of the text.
  std::string_view Token() {
    SkipBlanks();
    const std::size_t begin = at_;
    while (at_ < text_.size() && !IsBlank(text_[at_])) {
      if (EndsToken(text_[at_])) {
        if (at_ == begin) ++at_;
        break;
      }
      ++at_;
    }
    return text_.substr(begin, at_ - begin);
  }

  std::string_view NeededToken() {
    const std::string_view token = Token();
    if (token.empty()) Fail("unexpected end of file");
    return token;
  }

  void Expect(std::string_view wanted) {
    if (NeededToken() != wanted) Fail("\"" + std::string(wanted) + "\" is missing");
  }

  /// An object's optional name and its opening brace.
  std::string_view Open() {
    const std::string_view name = NeededToken();
    if (name == "{") return {};
    Expect("{");
    return name;
  }

  /// The same for an object that is copied, without its name.
  void Begin(std::string_view kind) {
    Open();
    plain_ += kind;
    plain_ += " {\n";
  }

  void End() { plain_ += "}\n"; }

  void Separate() {
    SkipBlanks();
    if (at_ >= text_.size()) Fail("unexpected end of file");
    if (!IsSeparator(text_[at_])) Fail("a number is followed by neither ';' nor ','");
    ++at_;
    plain_ += Separator;
  }

  /// After a list of numbers.
  void EndRow() {
    SkipBlanks();
    if (IsSeparator(Next())) ++at_;
    plain_ += '\n';
  }

  // Numbers, each followed by a separator.

  std::size_t Integer() {
    constexpr std::size_t MostDigits = 9;
    SkipBlanks();
    std::size_t value = 0, digits = 0;
    for (; IsDigit(Next()) && digits <= MostDigits; ++at_, ++digits)
      value = value * 10 + static_cast<std::size_t>(Next() - '0');
    if (digits == 0) Fail(at_ < text_.size() ? "an integer is missing" : "unexpected end of file");
    if (digits > MostDigits) Fail("an integer is too large");
    plain_ += std::to_string(value);
    Separate();
    return value;
  }

  std::size_t Count(const char *what, std::size_t most) {
    const std::size_t count = Integer();
    if (count > most) Fail(std::to_string(count) + " " + what + " are too many");
    return count;
  }

  void CountOf(const char *what, std::size_t wanted) {
    const std::size_t count = Integer();
    if (count == wanted) return;
    Fail(std::to_string(count) + " " + what + " instead of " + std::to_string(wanted));
  }

  void Index(const char *what, std::size_t count) {
    const std::size_t index = Integer();
    if (index < count) return;
    Fail(std::string("there is no ") + what + " " + std::to_string(index) + " among " +
         std::to_string(count));
  }

  void Digits() {
    if (!IsDigit(Next())) Fail(at_ < text_.size() ? "a number is missing" : "unexpected end of file");
    while (IsDigit(Next())) ++at_;
  }

  void Number() {
    SkipBlanks();
    const std::size_t begin = at_;
    if (Next() == '-') ++at_;
    Digits();
    if (Next() == '.') {
      ++at_;
      Digits();
    }
    if (Next() == 'e' || Next() == 'E') {
      ++at_;
      if (Next() == '-' || Next() == '+') ++at_;
      Digits();
    }
    if (at_ - begin > LongestNumber) Fail("a number is too long");
    double value = 0;
    const char *first = text_.data() + begin;
    if (std::from_chars(first, text_.data() + at_, value).ec != std::errc() ||
        std::abs(value) > LargestNumber)
      Fail("a number is too large");
    plain_ += text_.substr(begin, at_ - begin);
    Separate();
  }

  void Numbers(int count) {
    for (int i = 0; i < count; ++i) Number();
    EndRow();
  }

  // Objects.

  void SkipObject() {
    Open();
    for (std::size_t depth = 1; depth > 0;) {
      const std::string_view token = NeededToken();
      if (token == "{") ++depth;
      if (token == "}") --depth;
    }
  }

  void Template() {
    Open();
    while (NeededToken() != "}") continue;
  }

  void Frame(std::size_t depth) {
    if (depth > DeepestFrame) Fail("frames are nested too deeply");
    if (++frames_ > MostFrames) Fail("it has too many frames");
    Begin("Frame");
    while (true) {
      const std::string_view kind = NeededToken();
      if (kind == "}") return End();
      if (kind == "Frame") {
        Frame(depth + 1);
      } else if (kind == "FrameTransformMatrix") {
        Begin(kind);
        for (int i = 0; i < 16; ++i) Number();
        Expect(";");
        plain_ += Separator;
        Expect("}");
        End();
      } else if (kind == "Mesh") {
        Mesh();
      } else {
        Fail("\"" + Shown(kind) + "\" is unknown in a frame");
      }
    }
  }

  /// Faces as lists of indices below `limit`; returns the number of corners of each.
  std::vector<std::uint8_t> Faces(std::size_t count, const char *what, std::size_t limit) {
    constexpr std::size_t Triangle = 3, Square = 4;
    std::vector<std::uint8_t> faces;
    for (std::size_t face = 0; face < count; ++face) {
      const std::size_t corners = Integer();
      if (corners < Triangle || corners > Square) Fail("a face has " + std::to_string(corners) + " corners");
      for (std::size_t corner = 0; corner < corners; ++corner) Index(what, limit);
      EndRow();
      faces.push_back(static_cast<std::uint8_t>(corners));
    }
    return faces;
  }

  void Mesh() {
    if (++meshes_ > MostMeshes) Fail("it has too many meshes");
    Begin("Mesh");
    const std::size_t vertices = Count("vertices", MostVertices - vertices_);
    vertices_ += vertices;
    for (std::size_t vertex = 0; vertex < vertices; ++vertex) Numbers(3);
    const std::size_t count = Count("faces", MostFaces - faces_);
    faces_ += count;
    if (count == 0) Fail("a mesh has no faces");
    const std::vector<std::uint8_t> faces = Faces(count, "vertex", vertices);
    std::vector<std::string_view> seen;
    while (true) {
      const std::string_view kind = NeededToken();
      if (kind == "}") return End();
      if (std::ranges::find(seen, kind) != seen.end()) Fail("a second \"" + Shown(kind) + "\" in a mesh");
      seen.push_back(kind);
      if (kind == "MeshNormals") {
        Normals(faces);
      } else if (kind == "MeshVertexColors") {
        Colors(vertices);
      } else if (kind == "MeshTextureCoords") {
        Begin(kind);
        CountOf("texture coordinates", vertices);
        for (std::size_t vertex = 0; vertex < vertices; ++vertex) Numbers(2);
        Expect("}");
        End();
      } else if (kind == "MeshMaterialList") {
        Materials(faces.size());
      } else if (kind == "VertexDuplicationIndices") {
        SkipObject();
      } else {
        Fail("\"" + Shown(kind) + "\" is unknown in a mesh");
      }
    }
  }

  void Normals(const std::vector<std::uint8_t> &faces) {
    Begin("MeshNormals");
    const std::size_t normals = Count("normals", MostVertices * 4);
    for (std::size_t normal = 0; normal < normals; ++normal) Numbers(3);
    CountOf("faces of normals", faces.size());
    if (Faces(faces.size(), "normal", normals) != faces) Fail("a face doesn't have one normal per corner");
    Expect("}");
    End();
  }

  void Colors(std::size_t vertices) {
    Begin("MeshVertexColors");
    CountOf("colours", vertices);
    for (std::size_t color = 0; color < vertices; ++color) {
      Index("vertex", vertices);
      Numbers(4);
      EndRow();
    }
    Expect("}");
    End();
  }

  void Materials(std::size_t faces) {
    Begin("MeshMaterialList");
    const std::size_t materials = Count("materials", MostMaterials), indices = Integer();
    if (indices != faces && indices != 1) Fail("not every face has a material");
    for (std::size_t index = 0; index < indices; ++index) Index("material", materials);
    if (Next() == Separator) ++at_;
    plain_ += Separator;
    std::size_t given = 0;
    while (true) {
      const std::string_view kind = NeededToken();
      if (kind == "}") break;
      if (kind == ";") continue;
      ++given;
      if (kind == "{") {
        const std::string_view name = NeededToken();
        const auto shared = shared_.find(name);
        if (shared == shared_.end()) Fail("there is no material \"" + Shown(name) + "\"");
        plain_ += shared->second;
        Expect("}");
      } else if (kind == "Material") {
        Material();
      } else {
        Fail("\"" + Shown(kind) + "\" is unknown among materials");
      }
    }
    if (given != materials) Fail("the number of materials of a mesh is wrong");
    End();
  }

  /// A material outside the meshes, which refer to it by name. It is copied into each of them.
  void SharedMaterial() {
    const std::size_t before = plain_.size();
    const std::string_view name = Material();
    if (!name.empty()) shared_[name] = plain_.substr(before);
    plain_.resize(before);
  }

  /// Returns its name.
  std::string_view Material() {
    if (++materials_ > MostMaterials) Fail("it has too many materials");
    const std::string_view name = Open();
    plain_ += "Material {\n";
    Numbers(4);
    Number();
    Numbers(3);
    Numbers(3);
    while (true) {
      const std::string_view kind = NeededToken();
      if (kind == "}") break;
      if (kind != "TextureFilename" && kind != "TextureFileName")
        Fail("\"" + Shown(kind) + "\" is unknown in a material");
      TextureName();
    }
    End();
    return name;
  }

  /// Ignored: the game chooses the textures.
  void TextureName() {
    Open();
    SkipBlanks();
    if (Next() != '"') Fail("a file name isn't quoted");
    const std::size_t end = text_.find('"', at_ + 1);
    if (end == std::string_view::npos) Fail("unexpected end of file");
    at_ = end + 1;
    if (Next() != ';') Fail("\";\" is missing");
    ++at_;
    Expect("}");
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::string plain_;
  std::map<std::string_view, std::string> shared_; ///< materials by name
  std::size_t vertices_ = 0, faces_ = 0, meshes_ = 0, frames_ = 0, materials_ = 0;
};

} // namespace

std::string PlainMesh(std::span<const char> bytes) { return MeshText({bytes.data(), bytes.size()}).Plain(); }
