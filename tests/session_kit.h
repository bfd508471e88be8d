#pragma once

// Computers on a simulated network, for the tests of the session layer. All run on one headless machine and
// its clock, each with its own network object.

#include "net/application_guid.h"
#include "platform/headless/headless_machine.h"
#include "platform/headless/wire.h"
#include "platform/search_dialog.h"
#include "platform/session/connection.h"
#include "platform/session/session_direct_play.h"

#include <gtest/gtest.h>

#include <set>

namespace kit {

const std::string ThisComputer = "this computer";
const std::string Internet = "internet";

/// While it lives, enters a host in the search dialog, and closes the dialog if nobody is found.
struct DialogPlayer {
  DialogPlayer(HeadlessMachine &on, const std::string &host, const std::string &button = "Command1")
      : machine(on) {
    machine.Player = [this, host, button, answered = false]() mutable {
      auto *text = dynamic_cast<TextBox *>(machine.Find("frmSearch", "Text1"));
      if (!text) return;
      const auto &state = dynamic_cast<Label &>(*machine.Find("frmSearch", "Label2"));
      auto &again = dynamic_cast<CommandButton &>(*machine.Find("frmSearch", "Command1"));
      auto &close = dynamic_cast<CommandButton &>(*machine.Find("frmSearch", "Command2"));
      if (!answered) {
        answered = true;
        offered = text->Text;
        text->Text = host;
        machine.Press(button == "Command1" ? again : close);
      } else if (!again.Enabled) {
        searchedUntil = machine.Now();
      } else if (again.Caption == "Try again" && again.Enabled && told.empty()) {
        told = state.Caption;
        machine.Press(close);
      }
    };
  }
  ~DialogPlayer() { machine.Player = nullptr; }
  DialogPlayer(const DialogPlayer &) = delete;
  DialogPlayer &operator=(const DialogPlayer &) = delete;

  HeadlessMachine &machine;
  std::string offered; ///< initial entry of the dialog
  std::string told;    ///< the reason shown if nobody was found
  std::int32_t searchedUntil = 0;
};

struct Network {
  explicit Network(std::uint32_t seed = 1) : wire([this] { return machine.Now(); }, seed) {
    machine.NextArrival = [this] {
      std::optional<std::int32_t> next;
      for (const std::string &address : addresses) {
        const auto arrival = wire.NextArrival(address);
        if (arrival && (!next || *arrival < *next)) next = arrival;
      }
      return next;
    };
  }

  /// A network object on the computer with that address, bound to a connection method.
  std::shared_ptr<session::SessionDirectPlay> Program(const std::string &address,
                                                      const std::string &method = Internet) {
    addresses.insert(address);
    auto program =
        std::make_shared<session::SessionDirectPlay>(machine, wire.Plug(address), ShowSearchDialog);
    program->InitializeConnection(method);
    return program;
  }

  void Run(std::int32_t milliseconds) {
    const std::int32_t end = machine.ClockIn(milliseconds);
    while (!machine.ClockReached(end)) machine.WaitUntil(end);
  }

  /// Searches, entering `host` if a dialog is shown.
  std::vector<DirectPlaySessionData> Search(DirectPlay4 &program, const std::string &host = "") {
    const DialogPlayer player(machine, host);
    return Found(program);
  }

  /// Searches. The caller must answer the dialog.
  std::vector<DirectPlaySessionData> Found(DirectPlay4 &program) {
    DirectPlaySessionData wanted = program.CreateSessionData();
    wanted.SetGuidApplication(ApplicationGuid);
    const auto found = program.GetDPEnumSessions(wanted, 0, DPENUMSESSIONS_AVAILABLE);
    std::vector<DirectPlaySessionData> rows;
    for (std::int32_t i = 1; i <= found->GetCount(); ++i) rows.push_back(found->GetItem(i));
    return rows;
  }

  HeadlessMachine machine{""};
  FaultyWire wire;
  std::set<std::string> addresses;
};

inline DirectPlaySessionData Description(const std::string &name, std::int16_t rounds = 5) {
  DirectPlaySessionData data;
  data.SetMaxPlayers(2);
  data.SetSessionName(name);
  data.SetGuidApplication(ApplicationGuid);
  data.SetFlags(DPSESSION_MIGRATEHOST);
  data.SetRounds(rounds);
  return data;
}

inline std::int32_t Host(DirectPlay4 &program, const std::string &name = "SNWG1", std::int16_t rounds = 5) {
  program.Open(Description(name, rounds), DPOPEN_CREATE);
  return program.CreatePlayer("Bramble", "Player1", 0, 0);
}

inline std::int32_t Join(DirectPlay4 &program, const DirectPlaySessionData &row) {
  program.Open(row, DPOPEN_JOIN);
  return program.CreatePlayer("Thicket", "Player2", 0, 0);
}

/// The messages in a player's queue: the number of a game message, "joined" or "lost" for a system message.
inline std::vector<std::string> TakeAll(DirectPlay4 &program, std::int32_t player) {
  std::vector<std::string> taken;
  while (program.GetMessageCount(player) > 0) {
    std::int32_t from = 0;
    std::int32_t to = 0;
    const auto message = program.Receive(from, to, DPRECEIVE_ALL);
    switch (message->GetKind()) {
    case DirectPlayMessage::Kind::Game:
      taken.push_back(std::to_string(message->ReadLong()));
      break;
    case DirectPlayMessage::Kind::PlayerJoined:
      taken.emplace_back("joined");
      break;
    case DirectPlayMessage::Kind::ConnectionLost:
      taken.emplace_back("lost");
      break;
    }
  }
  return taken;
}

inline void SendNumber(DirectPlay4 &program, std::int32_t player, std::int32_t number) {
  const auto message = program.CreateMessage();
  message->WriteLong(number);
  program.Send(player, DPID_ALLPLAYERS, DPSEND_GUARANTEED, *message);
}

/// Two programs in a session.
struct Pair {
  explicit Pair(std::uint32_t seed = 1) : network(seed) {
    hostPlayer = Host(*host);
    row = network.Search(*joiner, "10.0.0.1:28710").at(0);
    joinerPlayer = Join(*joiner, row);
    network.Run(10);
    EXPECT_EQ(TakeAll(*host, hostPlayer), std::vector<std::string>{"joined"});
  }

  Network network;
  std::shared_ptr<session::SessionDirectPlay> host = network.Program("10.0.0.1");
  std::shared_ptr<session::SessionDirectPlay> joiner = network.Program("10.0.0.2");
  DirectPlaySessionData row;
  std::int32_t hostPlayer = 0;
  std::int32_t joinerPlayer = 0;
};

/// A raw connection of an unknown program.
struct Stranger {
  Stranger(Network &on, const std::string &address, std::uint16_t port = session::DefaultPort)
      : network(on), transport(on.wire.Plug(address)), stream(transport->Connect({"10.0.0.1", port})) {
    on.addresses.insert(address);
    on.Run(10);
  }

  void Send(session::ByteView bytes) {
    stream->Send(bytes);
    network.Run(10);
  }

  session::Bytes Received() {
    session::Bytes all(1000);
    all.resize(stream->Receive(all));
    return all;
  }

  bool Closed() { return stream->GetState() == session::StreamState::Closed; }

  Network &network;
  std::shared_ptr<session::Transport> transport;
  std::unique_ptr<session::Stream> stream;
};

} // namespace kit
