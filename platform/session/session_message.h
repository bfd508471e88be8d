#pragma once

// A message as a sequence of typed fields, and its encoding.

#include "platform/direct_play.h"
#include "platform/session/bytes.h"

#include <variant>

namespace session {

class SessionMessage : public DirectPlayMessage {
public:
  explicit SessionMessage(Kind kind = Kind::Game) : kind_(kind) {}

  /// Decodes a game message.
  /// @throws MalformedError  if the bytes are not complete fields of known types
  static SessionMessage Decode(ByteView bytes);

  /// Encodes all fields, including those already read.
  Bytes Encode() const;

  void WriteString(const std::string &value) override { fields_.emplace_back(value); }
  void WriteLong(std::int32_t value) override { fields_.emplace_back(value); }
  void WriteSingle(float value) override { fields_.emplace_back(value); }

  std::string ReadString() override { return Read<std::string>("text"); }
  std::int32_t ReadLong() override { return Read<std::int32_t>("32-bit integer"); }
  float ReadSingle() override { return Read<float>("32-bit float"); }

  bool AtEnd() const override { return next_ == fields_.size(); }
  Kind GetKind() const override { return kind_; }

private:
  template <class T> const T &Read(const char *type);

  Kind kind_;
  std::vector<std::variant<std::string, std::int32_t, float>> fields_;
  std::size_t next_ = 0;
};

template <class T> const T &SessionMessage::Read(const char *type) {
  if (AtEnd()) throw DirectPlayError(std::string("message: a ") + type + " is missing");
  const T *value = std::get_if<T>(&fields_[next_]);
  if (!value) throw DirectPlayError("message: field " + std::to_string(next_ + 1) + " is not a " + type);
  ++next_;
  return *value;
}

} // namespace session
