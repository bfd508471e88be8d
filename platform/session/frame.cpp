#include "platform/session/frame.h"

#include <algorithm>
#include <cctype>

namespace session {

namespace {

enum class FrameType : std::uint8_t {
  Ask = 1,
  Answer = 2,
  Join = 3,
  Resume = 4,
  Welcome = 5,
  Resumed = 6,
  Refuse = 7,
  Data = 8,
  Ack = 9,
  Bye = 10,
};

/// The beginning of every frame that may be the first on a connection.
void Introduce(ByteWriter &out, FrameType type, const Guid &game) {
  out.U8(static_cast<std::uint8_t>(type));
  out.U32(Magic);
  out.U16(ProtocolVersion);
  out.Raw(game);
}

void Begin(ByteWriter &out, FrameType type) { out.U8(static_cast<std::uint8_t>(type)); }

struct Encoder {
  Bytes &Body;
  ByteWriter Out{Body};

  void operator()(const AskFrame &frame) {
    Introduce(Out, FrameType::Ask, frame.Game);
    Out.U64(frame.Nonce);
    Body.resize(std::max(Body.size(), AskBytes));
  }
  void operator()(const AnswerFrame &frame) {
    const std::string name = CutText(frame.Name, LongestName);
    Introduce(Out, FrameType::Answer, frame.Game);
    Out.U64(frame.Nonce);
    Out.U64(frame.Session);
    Out.U8(frame.CurrentPlayers);
    Out.U8(frame.MaxPlayers);
    Out.U32(frame.Flags);
    Out.U16(frame.Rounds);
    Out.U8(static_cast<std::uint8_t>(name.size()));
    Out.Text(name);
  }
  void operator()(const JoinFrame &frame) {
    Introduce(Out, FrameType::Join, frame.Game);
    Out.U64(frame.Session);
  }
  void operator()(const ResumeFrame &frame) {
    Introduce(Out, FrameType::Resume, frame.Game);
    Out.U64(frame.Session);
    Out.Raw(frame.Secret);
    Out.U32(frame.Next);
  }
  void operator()(const WelcomeFrame &frame) {
    Begin(Out, FrameType::Welcome);
    Out.Raw(frame.Secret);
  }
  void operator()(const ResumedFrame &frame) {
    Begin(Out, FrameType::Resumed);
    Out.U32(frame.Next);
  }
  void operator()(const RefuseFrame &frame) {
    Begin(Out, FrameType::Refuse);
    Out.U8(static_cast<std::uint8_t>(frame.Reason));
  }
  void operator()(const DataFrame &frame) {
    Begin(Out, FrameType::Data);
    Out.U32(frame.Number);
    Out.U8(static_cast<std::uint8_t>(frame.Kind));
    Out.Raw(frame.Payload);
  }
  void operator()(const AckFrame &frame) {
    Begin(Out, FrameType::Ack);
    Out.U32(frame.Next);
  }
  void operator()(const ByeFrame &frame) {
    Begin(Out, FrameType::Bye);
    Out.U32(frame.Next);
  }
  void operator()(const OtherVersionFrame &) {} // never sent
};

Guid ReadGuid(ByteReader &in) {
  Guid guid;
  std::ranges::copy(in.Raw(guid.size()), guid.begin());
  return guid;
}

/// Type, magic, version, GUID and nonce of a question, bytes.
constexpr std::size_t AskFields =
    1 + sizeof Magic + sizeof ProtocolVersion + sizeof(Guid) + sizeof(std::uint64_t);

AskFrame ReadAsk(ByteReader &in) {
  AskFrame frame{ReadGuid(in), in.U64()};
  // Padded beyond any answer, so that a host can't be used to flood a third computer. The content is ignored.
  if (in.Left() < AskBytes - AskFields) throw MalformedError("question: is too short");
  in.Rest();
  return frame;
}

AnswerFrame ReadAnswer(ByteReader &in) {
  AnswerFrame frame;
  frame.Game = ReadGuid(in);
  frame.Nonce = in.U64();
  frame.Session = in.U64();
  frame.CurrentPlayers = in.U8();
  frame.MaxPlayers = in.U8();
  frame.Flags = in.U32();
  frame.Rounds = in.U16();
  const std::uint8_t length = in.U8();
  if (length > LongestName) throw MalformedError("answer: name is too long");
  frame.Name = in.Text(length);
  return frame;
}

ResumeFrame ReadResume(ByteReader &in) {
  ResumeFrame frame;
  frame.Game = ReadGuid(in);
  frame.Session = in.U64();
  std::ranges::copy(in.Raw(frame.Secret.size()), frame.Secret.begin());
  frame.Next = in.U32();
  return frame;
}

WelcomeFrame ReadWelcome(ByteReader &in) {
  WelcomeFrame frame;
  std::ranges::copy(in.Raw(frame.Secret.size()), frame.Secret.begin());
  return frame;
}

RefuseFrame ReadRefuse(ByteReader &in) {
  const std::uint8_t reason = in.U8();
  if (reason < 1 || reason > static_cast<std::uint8_t>(RefuseReason::WrongSecret))
    throw MalformedError("refusal: has no reason");
  return {static_cast<RefuseReason>(reason)};
}

DataFrame ReadData(ByteReader &in) {
  DataFrame frame;
  frame.Number = in.U32();
  const std::uint8_t kind = in.U8();
  if (kind > static_cast<std::uint8_t>(DataKind::Player)) throw MalformedError("data: is of no known kind");
  frame.Kind = static_cast<DataKind>(kind);
  const ByteView payload = in.Rest();
  frame.Payload.assign(payload.begin(), payload.end());
  return frame;
}

AnyFrame ReadBody(FrameType type, ByteReader &in) {
  switch (type) {
  case FrameType::Ask:
    return ReadAsk(in);
  case FrameType::Answer:
    return ReadAnswer(in);
  case FrameType::Join: {
    const Guid game = ReadGuid(in);
    return JoinFrame{game, in.U64()};
  }
  case FrameType::Resume:
    return ReadResume(in);
  case FrameType::Welcome:
    return ReadWelcome(in);
  case FrameType::Resumed:
    return ResumedFrame{in.U32()};
  case FrameType::Refuse:
    return ReadRefuse(in);
  case FrameType::Data:
    return ReadData(in);
  case FrameType::Ack:
    return AckFrame{in.U32()};
  case FrameType::Bye:
    return ByeFrame{in.U32()};
  }
  throw MalformedError("frame: is of no known type");
}

} // namespace

Bytes EncodeDatagram(const AnyFrame &frame) {
  Bytes body;
  body.reserve(AskBytes);
  std::visit(Encoder{body}, frame);
  return body;
}

Bytes EncodeFrame(const AnyFrame &frame) {
  const Bytes body = EncodeDatagram(frame);
  Bytes bytes;
  bytes.reserve(LengthBytes + body.size());
  ByteWriter out(bytes);
  out.U32(static_cast<std::uint32_t>(body.size()));
  out.Raw(body);
  return bytes;
}

AnyFrame DecodeDatagram(ByteView bytes) {
  ByteReader in(bytes);
  const auto type = static_cast<FrameType>(in.U8());
  if (type == FrameType::Ask || type == FrameType::Answer || type == FrameType::Join ||
      type == FrameType::Resume) {
    if (in.U32() != Magic) throw MalformedError("frame: is not of this protocol");
    const std::uint16_t version = in.U16();
    if (version != ProtocolVersion) return OtherVersionFrame{version};
  }
  AnyFrame frame = ReadBody(type, in);
  in.ExpectEnd();
  return frame;
}

void FrameReader::Add(ByteView bytes) {
  bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(begin_));
  begin_ = 0;
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

std::optional<AnyFrame> FrameReader::Next() {
  const ByteView waiting = ByteView(bytes_).subspan(begin_);
  if (waiting.size() < LengthBytes) return std::nullopt;
  ByteReader in(waiting);
  const std::uint32_t length = in.U32();
  // Checked before the frame is complete, so that a peer can't make us buffer what we will refuse.
  if (length == 0 || length > largest_ - LengthBytes) throw MalformedError("frame: has a forbidden length");
  if (in.Left() < length) return std::nullopt;
  begin_ += LengthBytes + length;
  return DecodeDatagram(in.Raw(length));
}

std::optional<Guid> ParseGuid(const std::string &text) {
  constexpr std::string_view Form = "{00000000-0000-0000-0000-000000000000}";
  if (text.size() != Form.size()) return std::nullopt;
  Guid guid{};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < Form.size(); ++i) {
    if (Form[i] != '0') {
      if (text[i] != Form[i]) return std::nullopt;
      continue;
    }
    const auto letter = static_cast<unsigned char>(text[i]);
    if (!std::isxdigit(letter)) return std::nullopt;
    const int value = std::isdigit(letter) ? letter - '0' : std::toupper(letter) - 'A' + 10;
    guid[digits / 2] = static_cast<std::uint8_t>(guid[digits / 2] * 16 + value);
    ++digits;
  }
  return guid;
}

std::string GuidText(const Guid &guid) {
  constexpr std::string_view Digits = "0123456789ABCDEF";
  std::string text = "{";
  for (std::size_t i = 0; i < guid.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += Digits[guid[i] >> 4];
    text += Digits[guid[i] & 15];
  }
  return text + '}';
}

std::string CutText(const std::string &text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  // A byte 10xxxxxx continues the character before it.
  while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U) --bytes;
  return text.substr(0, bytes);
}

} // namespace session
