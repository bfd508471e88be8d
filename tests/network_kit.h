#pragma once

// A network game whose other side is the test, which queues messages and sees the tags of those sent.

#include "tests/game_kit.h"

#include <deque>
#include <variant>

using Field = std::variant<std::string, std::int32_t, float>;

class FakeMessage : public DirectPlayMessage {
public:
  FakeMessage() = default;
  explicit FakeMessage(std::vector<Field> fields, Kind kind = Kind::Game)
      : fields_(std::move(fields)), kind_(kind) {}
  void WriteString(const std::string &value) override { fields_.emplace_back(value); }
  void WriteLong(std::int32_t value) override { fields_.emplace_back(value); }
  void WriteSingle(float value) override { fields_.emplace_back(value); }
  std::string ReadString() override { return Take<std::string>(); }
  std::int32_t ReadLong() override { return Take<std::int32_t>(); }
  float ReadSingle() override { return Take<float>(); }
  bool AtEnd() const override { return next_ == fields_.size(); }
  Kind GetKind() const override { return kind_; }
  const std::string &Tag() const { return std::get<std::string>(fields_.at(0)); }

private:
  template <class T> T Take() {
    if (AtEnd() || !std::holds_alternative<T>(fields_[next_])) throw DirectPlayError("no such field");
    return std::get<T>(fields_[next_++]);
  }
  std::vector<Field> fields_;
  Kind kind_ = Kind::Game;
  std::size_t next_ = 0;
};

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
  std::shared_ptr<DirectPlayMessage> CreateMessage() override { return std::make_shared<FakeMessage>(); }
  void Send(std::int32_t, std::int32_t, std::int32_t, const DirectPlayMessage &message) override {
    Sent.push_back(dynamic_cast<const FakeMessage &>(message).Tag());
  }
  bool Delivered() override { return Takes; }
  bool Broken() override { return LineDown; }
  void Close() override {}

  std::deque<std::shared_ptr<FakeMessage>> Incoming;
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
  void Receive(std::vector<Field> fields) {
    play->Incoming.push_back(std::make_shared<FakeMessage>(std::move(fields)));
  }
  void ReceiveIn(std::int32_t milliseconds, std::vector<Field> fields) {
    machine.After(milliseconds, [this, fields] { Receive(fields); });
  }
  std::shared_ptr<FakePlay> play;
};

inline std::vector<Field> Shot(const std::string &tag, float force, float z = 85.0f) {
  return {tag, 0.0f, 0.0f, z, force, 0.0f, 0.0f, 1.0f, 0.0f, 1.0f, 0.0f, std::int32_t{1}};
}
