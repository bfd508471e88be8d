#include "platform/session/session_message.h"

#include <bit>

namespace session {

namespace {

constexpr std::uint8_t TextField = 1;
constexpr std::uint8_t LongField = 2;
constexpr std::uint8_t SingleField = 3;
constexpr std::size_t MostFields = 64;

} // namespace

SessionMessage SessionMessage::Decode(ByteView bytes) {
  SessionMessage message;
  ByteReader reader(bytes);
  while (reader.Left() > 0) {
    if (message.fields_.size() == MostFields) throw MalformedError("message: has too many fields");
    switch (const std::uint8_t type = reader.U8()) {
    case TextField: {
      const std::uint16_t length = reader.U16();
      message.WriteString(reader.Text(length));
      break;
    }
    case LongField:
      message.WriteLong(static_cast<std::int32_t>(reader.U32()));
      break;
    case SingleField:
      message.WriteSingle(std::bit_cast<float>(reader.U32()));
      break;
    default:
      throw MalformedError("message: unknown field type " + std::to_string(type));
    }
  }
  return message;
}

Bytes SessionMessage::Encode() const {
  if (fields_.size() > MostFields) throw DirectPlayError("message: has too many fields");
  Bytes bytes;
  ByteWriter writer(bytes);
  for (const auto &field : fields_) {
    if (const auto *text = std::get_if<std::string>(&field)) {
      if (text->size() > UINT16_MAX) throw DirectPlayError("message: text is too long");
      writer.U8(TextField);
      writer.U16(static_cast<std::uint16_t>(text->size()));
      writer.Text(*text);
    } else if (const auto *number = std::get_if<std::int32_t>(&field)) {
      writer.U8(LongField);
      writer.U32(static_cast<std::uint32_t>(*number));
    } else {
      writer.U8(SingleField);
      writer.U32(std::bit_cast<std::uint32_t>(std::get<float>(field)));
    }
  }
  return bytes;
}

} // namespace session
