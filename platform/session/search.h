#pragma once

// The search for sessions: on this computer, on the local network, or at a named host.

#include "platform/direct_play.h"
#include "platform/search_prompt.h"
#include "platform/session/connection.h"

#include <algorithm>

namespace session {

/// A host as a player enters it: a name, an IPv4 or an IPv6 address, each with or without a port.
struct HostName {
  std::string Host;
  std::optional<std::uint16_t> Port;

  /// Understands "bramble", "bramble:28711", "192.168.1.7:28711", "fe80::1", "[fe80::1]:28711". Nothing for
  /// other texts.
  static std::optional<HostName> Parse(const std::string &text);
};

class Search {
public:
  /// @param host  the only host to ask; without it every computer within reach is asked
  Search(Transport &transport, Reach reach, std::optional<HostName> host, const Guid &game, std::int32_t now);

  void Poll(std::int32_t now);
  bool Done() const { return done_; }
  std::int32_t NextDeadline() const;

  std::vector<DirectPlaySessionData> Sessions() const; ///< in the order of discovery

  bool LooksUp() const { return lookup_ != nullptr; } ///< the name lookup is still running
  NobodyFound WhyNobody() const { return why_; }      ///< meaningful if there are no sessions

private:
  struct Call {
    Endpoint host;
    Connection connection;
    bool asked = false;
  };
  struct Found {
    std::uint64_t Session;
    std::string Address; ///< of its host
    DirectPlaySessionData Data;
  };

  std::vector<std::uint16_t> Ports() const;
  bool FinishLookup(std::int32_t now);
  void BeginCalls(const std::vector<std::string> &addresses, std::int32_t now);
  void Ask();
  void Learn(NobodyFound why) { why_ = std::max(why_, why); }
  bool PollCall(Call &call, std::int32_t now);
  void TakeDatagrams();
  void TakeReply(const AnyFrame &frame, const Endpoint &from);
  void TakeAnswer(const AnyFrame &frame, const Endpoint &from);

  Transport &transport_;
  Reach reach_;
  std::optional<HostName> host_;
  Guid game_;
  std::uint64_t nonce_ = 0;
  std::int32_t begun_; ///< start of the name lookup, then of the search
  std::int32_t askAt_;
  std::unique_ptr<DatagramPort> datagrams_;
  std::unique_ptr<Lookup> lookup_;
  std::vector<Endpoint> asked_; ///< asked individually; empty: by broadcast
  std::vector<Call> calls_;     ///< the same question over TCP, for hosts behind a router
  std::vector<Found> found_;
  NobodyFound why_ = NobodyFound::NobodyAnswers;
  bool done_ = false;
};

} // namespace session
