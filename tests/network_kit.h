#pragma once

// A network game whose other side is the test, which queues messages and sees the tags of those sent.

#include "platform/session/session_message.h"
#include "tests/game_kit.h"

#include <deque>
#include <variant>

using Field = std::variant<std::string, std::int32_t, float>;

inline std::shared_ptr<session::SessionMessage> Message(const std::vector<Field> &fields) {
  auto message = std::make_shared<session::SessionMessage>();
  for (const Field &field : fields) {
    if (const auto *text = std::get_if<std::string>(&field)) message->WriteString(*text);
    if (const auto *number = std::get_if<std::int32_t>(&field)) message->WriteLong(*number);
    if (const auto *number = std::get_if<float>(&field)) message->WriteSingle(*number);
  }
  return message;
}

/// A session whose other side is the test.
class FakePlay : public DirectPlay4 {
public:
  std::shared_ptr<DirectPlayEnumConnections> GetDPEnumConnections(const std::string &,
                                                                  std::int32_t) override {
    return nullptr;
  }
  void InitializeConnection(const std::string &) override {}
  DirectPlaySessionData CreateSessionData() override { return {}; }
  std::shared_ptr<DirectPlayEnumSessions> GetDPEnumSessions(const DirectPlaySessionData &, std::int32_t,
                                                            std::int32_t) override {
    return nullptr;
  }
  void Open(const DirectPlaySessionData &, std::int32_t) override {}
  std::int32_t CreatePlayer(const std::string &, const std::string &, std::int32_t, std::int32_t) override {
    return 1;
  }
  std::int32_t GetMessageCount(std::int32_t) override { return static_cast<std::int32_t>(Incoming.size()); }
  std::shared_ptr<DirectPlayMessage> Receive(std::int32_t &, std::int32_t &, std::int32_t) override {
    auto message = Incoming.front();
    Incoming.pop_front();
    return message;
  }
  std::shared_ptr<DirectPlayMessage> CreateMessage() override { return Message({}); }
  void Send(std::int32_t, std::int32_t, std::int32_t, const DirectPlayMessage &message) override {
    auto sent = dynamic_cast<const session::SessionMessage &>(message);
    Sent.push_back(sent.ReadString());
  }
  bool Delivered() override { return Takes; }
  bool Broken() override { return LineDown; }
  void Close() override {}

  std::deque<std::shared_ptr<DirectPlayMessage>> Incoming;
  std::vector<std::string> Sent;
  bool Takes = true; ///< the other side acknowledges messages
  bool LineDown = false;
};

/// A network game at the first possession, either of this computer, the host, or of the other.
struct NetworkGame : Game {
  explicit NetworkGame(bool waits) : Game("INET", 5), play(std::make_shared<FakePlay>()) {
    program.DP = play;
    program.IsHost = waits ? False : True;
    program.MyTurn = waits ? True : False; // the first turnover inverts it
    SetUp();
    SoundsSince();
    play->Sent.clear();
  }
  void Receive(const std::vector<Field> &fields) { play->Incoming.push_back(Message(fields)); }
  void ReceiveIn(std::int32_t milliseconds, std::vector<Field> fields) {
    machine.After(milliseconds, [this, fields] { Receive(fields); });
  }
  std::shared_ptr<FakePlay> play;
};

inline std::vector<Field> Shot(const std::string &tag, float force, float z = 85.0f) {
  return {tag, 0.0f, 0.0f, z, force, 0.0f, 0.0f, 1.0f, 0.0f, 1.0f, 0.0f, std::int32_t{1}};
}
