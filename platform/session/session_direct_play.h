#pragma once

// The game's network interface, over any transport.

#include "platform/machine.h"
#include "platform/search_prompt.h"
#include "platform/session/search.h"
#include "platform/session/session.h"

namespace session {

class SessionDirectPlay : public DirectPlay4 {
public:
  /// @param makePrompt  asks where to search by the Internet method; without it on the local network
  SessionDirectPlay(Machine &machine, std::shared_ptr<Transport> transport, MakeSearchPrompt makePrompt = {});
  ~SessionDirectPlay() override;

  std::shared_ptr<DirectPlayEnumConnections> GetDPEnumConnections(const std::string &guid,
                                                                  std::int32_t flags) override;
  void InitializeConnection(const std::string &address) override;
  DirectPlaySessionData CreateSessionData() override { return {}; }
  std::shared_ptr<DirectPlayEnumSessions>
  GetDPEnumSessions(const DirectPlaySessionData &wanted, std::int32_t timeout, std::int32_t flags) override;
  void Open(const DirectPlaySessionData &description, std::int32_t flags) override;
  std::int32_t CreatePlayer(const std::string &friendly, const std::string &formal, std::int32_t event,
                            std::int32_t flags) override;
  std::int32_t GetMessageCount(std::int32_t player) override;
  std::shared_ptr<DirectPlayMessage> Receive(std::int32_t &from, std::int32_t &to,
                                             std::int32_t flags) override;
  std::shared_ptr<DirectPlayMessage> CreateMessage() override;
  void Send(std::int32_t from, std::int32_t to, std::int32_t flags,
            const DirectPlayMessage &message) override;
  bool Delivered() override;
  bool Broken() override;
  void Close() override;

  /// The open session, for measurements; null if there is none.
  Session *Opened() { return session_.get(); }

private:
  void Poll();
  void ExpectConnection() const;
  void RunSearch(std::optional<HostName> host, const Guid &game,
                 const std::function<bool(const Search &)> &keepGoing);
  std::vector<DirectPlaySessionData> SearchByPrompt(const Guid &game);
  void Join(const DirectPlaySessionData &description);
  void Await(const std::function<bool()> &over);

  Machine &machine_;
  std::shared_ptr<Transport> transport_;
  MakeSearchPrompt makePrompt_;
  std::shared_ptr<void> poll_;
  std::optional<Reach> reach_;
  std::unique_ptr<Search> search_;         ///< while a search runs
  std::unique_ptr<Session> session_;       ///< while a session is open
  std::unique_ptr<RouterPort> routerPort_; ///< while a host is open
  std::int32_t player_ = 0;                ///< id of the local player, 0 if there is none
  bool isHost_ = false;
  bool joining_ = false;
};

} // namespace session
