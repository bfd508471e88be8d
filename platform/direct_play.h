#pragma once

// Sessions of two computers and their messages: connection methods, search, create, join, players, a message
// queue for each player, guaranteed delivery.

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

/// A network operation that failed; says which and why.
class DirectPlayError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

constexpr std::int32_t DPCONNECTION_DIRECTPLAY = 1;
constexpr std::int32_t DPENUMSESSIONS_AVAILABLE = 1;
constexpr std::int32_t DPOPEN_JOIN = 1;
constexpr std::int32_t DPOPEN_CREATE = 2;
constexpr std::int32_t DPSESSION_MIGRATEHOST = 4;
constexpr std::int32_t DPRECEIVE_ALL = 1;
constexpr std::int32_t DPSEND_GUARANTEED = 1;
constexpr std::int32_t DPID_ALLPLAYERS = 0;

/// A sequence of typed fields, read in the order written.
class DirectPlayMessage {
public:
  virtual ~DirectPlayMessage() = default;

  virtual void WriteString(const std::string &value) = 0;
  virtual void WriteLong(std::int32_t value) = 0;
  virtual void WriteSingle(float value) = 0;

  // Each read takes the next field. @throws DirectPlayError if there is none or it is of another type.
  virtual std::string ReadString() = 0;
  virtual std::int32_t ReadLong() = 0;
  virtual float ReadSingle() = 0;

  /// Whether every field has been read.
  virtual bool AtEnd() const = 0;

  /// A message of the game, or one of the session layer: a player has joined, the other player is lost for
  /// good.
  enum class Kind { Game, PlayerJoined, ConnectionLost };
  virtual Kind GetKind() const = 0;
};

constexpr std::int16_t MostRounds = 99; ///< of a match

/// A session's description: search template, row of a search, or the session to open.
struct DirectPlaySessionData {
  void SetGuidApplication(const std::string &guid) { guid_ = guid; }
  void SetSessionName(const std::string &name) { name_ = name; }
  void SetSessionPassword(const std::string &) {} ///< sessions have no passwords
  void SetMaxPlayers(std::int32_t players) { maxPlayers_ = players; }
  void SetFlags(std::int32_t flags) { flags_ = flags; }
  /// Rounds of the match, chosen by the host and told to everybody who finds the session.
  void SetRounds(std::int16_t rounds) { rounds_ = rounds; }
  /// Filled by a search.
  void SetCurrentPlayers(std::int32_t players) { currentPlayers_ = players; }
  /// How to reach the session. Only the layer that found it understands it.
  void SetAddress(const std::string &address) { address_ = address; }

  const std::string &GetGuidApplication() const { return guid_; }
  const std::string &GetSessionName() const { return name_; }
  std::int32_t GetMaxPlayers() const { return maxPlayers_; }
  std::int32_t GetCurrentPlayers() const { return currentPlayers_; }
  std::int32_t GetFlags() const { return flags_; }
  std::int16_t GetRounds() const { return rounds_; }
  const std::string &GetAddress() const { return address_; }

private:
  std::string guid_;
  std::string name_;
  std::string address_;
  std::int32_t maxPlayers_ = 0;
  std::int32_t currentPlayers_ = 0;
  std::int32_t flags_ = 0;
  std::int16_t rounds_ = 0;
};

/// The connection methods of this computer. Indices run from 1.
class DirectPlayEnumConnections {
public:
  virtual ~DirectPlayEnumConnections() = default;
  virtual std::int32_t GetCount() const = 0;
  virtual std::string GetName(std::int32_t index) const = 0;
  virtual std::string GetAddress(std::int32_t index) const = 0;
};

/// The result of a search. Indices run from 1; any other index fails.
class DirectPlayEnumSessions {
public:
  virtual ~DirectPlayEnumSessions() = default;
  virtual std::int32_t GetCount() const = 0;
  virtual DirectPlaySessionData GetItem(std::int32_t index) const = 0;
};

/// The network. Every operation except those of the message queue throws DirectPlayError on failure.
class DirectPlay4 {
public:
  virtual ~DirectPlay4() = default;

  virtual std::shared_ptr<DirectPlayEnumConnections> GetDPEnumConnections(const std::string &guid,
                                                                          std::int32_t flags) = 0;

  /// Binds a new object to a connection method. Called once.
  virtual void InitializeConnection(const std::string &address) = 0;

  virtual DirectPlaySessionData CreateSessionData() = 0;

  /// Searches for sessions that can be joined and returns when the search is over, after about a second. May
  /// show a dialog that asks where to search; it stays until a session is found or the player gives up.
  virtual std::shared_ptr<DirectPlayEnumSessions>
  GetDPEnumSessions(const DirectPlaySessionData &wanted, std::int32_t timeout, std::int32_t flags) = 0;

  /// Creates the session and becomes its host, or joins it.
  virtual void Open(const DirectPlaySessionData &session, std::int32_t flags) = 0;

  /// Creates the local player and returns its id. The other computer gets a system message.
  virtual std::int32_t CreatePlayer(const std::string &friendly, const std::string &formal,
                                    std::int32_t event, std::int32_t flags) = 0;

  /// Number of messages in a player's queue, including system messages.
  virtual std::int32_t GetMessageCount(std::int32_t player) = 0;

  /// Takes the oldest message off the queue.
  virtual std::shared_ptr<DirectPlayMessage> Receive(std::int32_t &from, std::int32_t &to,
                                                     std::int32_t flags) = 0;

  virtual std::shared_ptr<DirectPlayMessage> CreateMessage() = 0;

  /// Sends to the other player, exactly once and in order, across breaks of the line. Never blocks.
  virtual void Send(std::int32_t from, std::int32_t to, std::int32_t flags,
                    const DirectPlayMessage &message) = 0;

  /// Whether everything sent has reached the other computer, or never will.
  virtual bool Delivered() = 0;

  /// Whether the line to the other computer is down. If it doesn't come back, the other player is lost for
  /// good.
  virtual bool Broken() = 0;

  /// Leaves the session; nobody can join it any more. Waits a moment at most for queued messages to go out.
  virtual void Close() = 0;
};
