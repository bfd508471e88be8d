// The lobby and the address lookup, driven by the buttons of the launch window.

#include "front/run_program.h"
#include "net/address_lookup.h"
#include "net/frm_new_net.h"
#include "tests/session_kit.h"

#include <gtest/gtest.h>

namespace {

/// A launch window on its own computer, optionally with a session on another computer.
struct Lobby {
  Lobby()
      : machine(SNAPWEDGE_GAME_DIR), program(machine), wire([this] { return machine.Now(); }, 1),
        window(machine, program) {
    machine.MakeDirectPlay = [this] {
      return std::make_shared<session::SessionDirectPlay>(machine, wire.Plug("10.0.0.1"), ShowSearchDialog);
    };
    machine.NextArrival = [this] { return wire.NextArrival("10.0.0.1"); };
    // The search dialog is left blank.
    machine.Player = [this] {
      if (Window *dialog = machine.Shown.empty() ? nullptr : machine.Shown.back();
          dialog && dialog != &window) {
        for (Control *control : dialog->Controls) {
          auto *button = dynamic_cast<CommandButton *>(control);
          if (button && button->Default) machine.Press(*button);
        }
      }
    };
    window.Form_Load();
  }

  /// Which of Connect, Refresh, Create, Join and Cancel are enabled.
  std::string Buttons() const {
    std::string on;
    for (const CommandButton *button :
         {&window.cmdConnect, &window.Command4, &window.cmdCreate, &window.cmdJoin, &window.Command5}) {
      if (button->Enabled) on += (on.empty() ? "" : " ") + button->Caption;
    }
    return on;
  }

  void Wait(std::int32_t milliseconds) {
    const std::int32_t end = machine.ClockIn(milliseconds);
    while (!machine.ClockReached(end)) machine.WaitUntil(end);
  }

  /// A program on another computer, which searches the local network.
  std::shared_ptr<session::SessionDirectPlay> Other() {
    auto other = std::make_shared<session::SessionDirectPlay>(machine, wire.Plug("10.0.0.2"));
    other->InitializeConnection(kit::Internet);
    return other;
  }

  HeadlessMachine machine;
  Program program;
  FaultyWire wire;
  frmNewNet window;
};

/// The sessions that a program finds.
std::shared_ptr<DirectPlayEnumSessions> Search(DirectPlay4 &program) {
  return program.GetDPEnumSessions(kit::Description(""), 0, DPENUMSESSIONS_AVAILABLE);
}

constexpr const char *NetworkTitle = "Error initializing DirectPlay.";

TEST(LobbyTest, ConnectCreateCancelAndBackAgain) {
  Lobby lobby;
  EXPECT_EQ(lobby.Buttons(), "Connect");
  for (int time = 0; time < 2; ++time) {
    lobby.window.lstSessions.ListIndex = 2;
    lobby.window.cmdConnect_Click();
    EXPECT_EQ(lobby.Buttons(), "Refresh Create Join");
    EXPECT_TRUE(lobby.window.lstSessions.List.empty());
    EXPECT_EQ(lobby.window.lstSessions.ListIndex, -1);
    EXPECT_EQ(lobby.window.lstSessions.EmptyText, "No game was found. Refresh looks again.");
    EXPECT_FALSE(lobby.window.lstConnections.Enabled) << "another row isn't the method in use";
    lobby.machine.After(100, [&] { EXPECT_EQ(lobby.window.lstSessions.EmptyText, "") << "still looking"; });
    lobby.window.Command4_Click();
    EXPECT_EQ(lobby.Buttons(), "Refresh Create Join");
    lobby.machine.After(500, [&] {
      EXPECT_EQ(lobby.Buttons(), "Cancel");
      EXPECT_EQ(lobby.machine.Focus, &lobby.window.Command5);
      EXPECT_EQ(lobby.window.Caption, "Polling...");
      EXPECT_EQ(lobby.window.lstSessions.EmptyText, "Waiting for the other player to join.");
      EXPECT_FALSE(lobby.window.Command1.Enabled);
      EXPECT_EQ(lobby.program.IsHost, True);
      EXPECT_EQ(lobby.wire.RouterPorts(), (std::multiset<session::Endpoint>{{"10.0.0.1", 28710}}));
      lobby.machine.Press(lobby.window.Command5);
    });
    lobby.window.cmdCreate_Click();
    EXPECT_TRUE(lobby.wire.RouterPorts().empty());
    EXPECT_EQ(lobby.Buttons(), "Connect");
    EXPECT_TRUE(lobby.window.lstConnections.Enabled);
    EXPECT_EQ(lobby.window.lstSessions.EmptyText, "");
    EXPECT_EQ(lobby.machine.Focus, &lobby.window.cmdConnect);
    EXPECT_EQ(lobby.window.Caption, LaunchCaption);
    EXPECT_EQ(lobby.window.Cancelled, False);
    EXPECT_EQ(lobby.program.IsHost, False);
    EXPECT_EQ(lobby.program.MyTurn, False);
    EXPECT_TRUE(lobby.window.Command1.Enabled);
  }
  EXPECT_TRUE(lobby.machine.Boxes.empty());
  EXPECT_EQ(Search(*lobby.Other())->GetCount(), 0) << "a cancelled session is gone";
}

TEST(LobbyTest, AMatchKeepsTheLaunchWindowBehindItStill) {
  Lobby lobby;
  lobby.program.GameMode = "Human";
  lobby.machine.After(500, [&] { lobby.machine.Press(lobby.window.Command3); });
  lobby.machine.After(1000, [&] {
    EXPECT_TRUE(lobby.window.Visible);
    EXPECT_EQ(lobby.machine.FindWindow("frmControls"), nullptr);
    lobby.machine.PressKey(KeyCodes::Escape);
  });
  EXPECT_THROW(lobby.window.OpenPlayWindow(), ProgramEnd);
}

TEST(LobbyTest, FailuresHaveTheirBoxesAndLeadBackToTheStart) {
  struct Row {
    const char *name;
    void (*act)(Lobby &);
    const char *text;
  };
  const Row rows[] = {
      {"join without a row", [](Lobby &l) { l.window.cmdJoin_Click(); }, "You must select a game to join."},
      {"create without a name",
       [](Lobby &l) {
         l.window.txtName.Text = "";
         l.window.cmdCreate_Click();
       },
       "An error was encountered while attempting to create a DirectPlay session.  Please make sure that you "
       "entered a "
       "Session Name and that you have the latest DirectX Drivers installed."},
      {"connect without a method",
       [](Lobby &l) {
         l.window.lstConnections.ListIndex = -1;
         l.window.cmdConnect_Click();
       },
       "Error Initializing DirectPlay.  Please make sure that you have the latest DirectX7 Drivers "
       "installed."},
      {"create without rounds",
       [](Lobby &l) {
         l.window.Text1.Text = "0";
         l.window.cmdCreate_Click();
       },
       "Please enter a whole number from 1 to 99."},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Lobby lobby;
    lobby.window.cmdConnect_Click();
    row.act(lobby);
    ASSERT_EQ(lobby.machine.Boxes.size(), 1U);
    EXPECT_EQ(lobby.machine.Boxes[0].Text, row.text);
    const bool rounds = std::string(row.name) == "create without rounds";
    EXPECT_EQ(lobby.machine.Boxes[0].Title, rounds ? "Rounds to Play:" : NetworkTitle);
    EXPECT_EQ(lobby.Buttons(), rounds ? "Refresh Create Join" : "Connect");
    EXPECT_EQ(lobby.program.IsHost, False);
    EXPECT_EQ(lobby.program.MyTurn, False);
  }
}

TEST(LobbyTest, AHostsSessionIsListedAndGoneAfterItsCancel) {
  Lobby lobby;
  HeadlessMachine other(SNAPWEDGE_GAME_DIR);
  session::SessionDirectPlay host(other, lobby.wire.Plug("10.0.0.2"));
  host.InitializeConnection(kit::Internet);
  const std::int32_t me = kit::Host(host, "SNWG77", 3);
  // The program of the other computer runs in the same process.
  const auto beside = lobby.machine.OnPump([&] {
    other.SetNow(lobby.machine.Now());
    host.GetMessageCount(me);
  });
  lobby.window.cmdConnect_Click();
  ASSERT_EQ(lobby.window.lstSessions.List, std::vector<std::string>{"SNWG77 (1/2)"});
  EXPECT_EQ(lobby.program.Sessions->GetItem(1).GetRounds(), 3);
  host.Close();
  lobby.window.lstSessions.ListIndex = 0;
  lobby.window.cmdJoin_Click();
  ASSERT_EQ(lobby.machine.Boxes.size(), 1U) << "an ended session can't be joined";
  EXPECT_EQ(lobby.machine.Boxes[0].Text, "You must select a game to join.");
  EXPECT_EQ(lobby.Buttons(), "Connect");
}

TEST(LobbyTest, TheCloseBoxEndsTheProgramAlsoWhileItSearchesOrJoins) {
  for (const bool joins : {false, true}) {
    SCOPED_TRACE(joins ? "joins" : "searches");
    Lobby lobby;
    session::SessionDirectPlay host(lobby.machine, lobby.wire.Plug("10.0.0.2"));
    host.InitializeConnection("internet");
    kit::Host(host, "SNWG77", 3);
    if (joins) {
      lobby.window.cmdConnect_Click();
      ASSERT_EQ(lobby.window.lstSessions.List.size(), 1U);
      lobby.window.lstSessions.ListIndex = 0;
    } else {
      lobby.window.lstConnections.ListIndex = 0; // which has no dialog
    }
    const std::int32_t begun = lobby.machine.Now();
    lobby.wire.Line().Breaks = {{begun, begun + 60000}};
    auto &button = joins ? lobby.window.cmdJoin : lobby.window.cmdConnect;
    lobby.machine.After(100, [&] { lobby.machine.Press(lobby.window.Command3); });
    lobby.machine.After(500, [&] {
      EXPECT_FALSE(lobby.machine.FindWindow("frmControls")) << "buttons don't work";
      lobby.machine.CloseBox(lobby.window);
    });
    EXPECT_THROW(button.Click(), ProgramEnd);
    EXPECT_LE(lobby.machine.Now() - begun, 600);
  }
}

TEST(LobbyTest, WhereNobodyAnswersThePlayerTriesAgainOrCloses) {
  Lobby lobby;
  const auto host = lobby.Other();
  const auto in = [&](const char *name) { return lobby.machine.Find("frmSearch", name); };
  const auto press = [&](const char *name, const char *caption) {
    auto &button = dynamic_cast<CommandButton &>(*in(name));
    EXPECT_EQ(button.Caption, caption);
    lobby.machine.Press(button);
  };
  const auto enter = [&](const char *text) { dynamic_cast<TextBox &>(*in("Text1")).Text = text; };
  lobby.machine.Player = nullptr;
  lobby.machine.After(100, [&] {
    enter("10.0.0.3");
    press("Command1", "OK");
  });
  lobby.machine.After(600, [&] {
    EXPECT_EQ(dynamic_cast<Label &>(*in("Label2")).Caption, "Searching 10.0.0.3 ...");
    EXPECT_FALSE(in("Text1")->Enabled);
    EXPECT_FALSE(in("Command1")->Enabled);
  });
  lobby.machine.After(1500, [&] { press("Command2", "Close"); });
  lobby.window.cmdConnect_Click();
  EXPECT_EQ(lobby.Buttons(), "Refresh Create Join");
  EXPECT_TRUE(lobby.window.lstSessions.List.empty());

  lobby.window.Command5_Click();
  lobby.machine.After(100, [&] { press("Command1", "OK"); });
  lobby.machine.After(1500, [&] {
    EXPECT_EQ(dynamic_cast<TextBox &>(*in("Text1")).Text, "10.0.0.3") << "the last entry";
    EXPECT_TRUE(in("Text1")->Enabled);
    EXPECT_EQ(lobby.machine.Focus, in("Text1"));
    host->Open(kit::Description("SNWG77"), DPOPEN_CREATE);
    enter("10.0.0.2");
    press("Command1", "Try again");
  });
  lobby.machine.After(2000, [&] { press("Command2", "Cancel"); }); // after the search
  lobby.window.cmdConnect_Click();
  EXPECT_LT(lobby.machine.Now(), 4000);
  EXPECT_EQ(lobby.window.lstSessions.List, std::vector<std::string>{"SNWG77 (1/2)"});
  EXPECT_EQ(lobby.machine.FindWindow("frmSearch"), nullptr);
  EXPECT_TRUE(lobby.machine.Boxes.empty());
}

TEST(LobbyTest, AJoinerThatHasLeftAgainStartsNoMatch) {
  for (const bool cancels : {false, true}) {
    SCOPED_TRACE(cancels ? "the host cancels" : "the host looks");
    Lobby lobby;
    const auto guest = lobby.Other();
    lobby.window.cmdConnect_Click();
    // All of it happens between two polls of the host, as when a box is open.
    lobby.machine.After(500, [&] {
      const DirectPlaySessionData row = Search(*guest)->GetItem(1);
      EXPECT_EQ(row.GetFlags(), DPSESSION_MIGRATEHOST);
      const std::int32_t player = kit::Join(*guest, row);
      const auto message = guest->CreateMessage();
      message->WriteString("END");
      guest->Send(player, DPID_ALLPLAYERS, DPSEND_GUARANTEED, *message);
      if (!cancels) guest->Close();
      lobby.Wait(50);
    });
    // Cancel is pressed between two messages.
    const auto beside = lobby.machine.OnPump([&] {
      if (cancels && lobby.program.InMsg) lobby.machine.Press(lobby.window.Command5);
    });
    lobby.window.cmdCreate_Click();
    EXPECT_EQ(lobby.machine.Boxes.size(), cancels ? 0U : 1U);
    EXPECT_EQ(lobby.Buttons(), "Connect");
    EXPECT_EQ(lobby.window.Caption, LaunchCaption);
    EXPECT_EQ(lobby.window.Cancelled, False);
    EXPECT_EQ(lobby.program.IsHost, False);
  }
}

TEST(LobbyTest, WhatTheHostReadsClosesWhenSomebodyJoins) {
  struct Row {
    const char *window;
    CommandButton frmNewNet::*opens;
  };
  for (const Row &row : {Row{"frmText", &frmNewNet::Command7}, Row{"frmControls", &frmNewNet::Command3},
                         Row{"frmBackground", &frmNewNet::Command6}, Row{"MsgBox", &frmNewNet::Command8}}) {
    SCOPED_TRACE(row.window);
    Lobby lobby;
    lobby.machine.BoxMs = 1000000; // nobody presses OK
    const auto guest = lobby.Other();
    lobby.window.cmdConnect_Click();
    DirectPlaySessionData found;
    lobby.machine.After(500, [&] {
      found = Search(*guest)->GetItem(1);
      lobby.machine.Player = nullptr;
      lobby.machine.Press(lobby.window.*row.opens);
      lobby.machine.After(1000, [&] {
        EXPECT_TRUE(lobby.machine.FindWindow(row.window));
        kit::Join(*guest, found);
        lobby.machine.After(200, [&] {
          EXPECT_TRUE(lobby.machine.FindWindow("frmSnapwedge"));
          EXPECT_FALSE(lobby.machine.FindWindow(row.window));
          throw ProgramEnd{};
        });
      });
    });
    EXPECT_THROW(lobby.window.cmdCreate_Click(), ProgramEnd);
  }
}

TEST(LobbyTest, CancelInThePollThatFindsTheJoinerWins) {
  // The press arrives in the first or second pump after the joiner was found.
  for (const int pump : {1, 2}) {
    SCOPED_TRACE(pump);
    Lobby lobby;
    const auto guest = lobby.Other();
    lobby.window.cmdConnect_Click();
    lobby.machine.After(500, [&] {
      kit::Join(*guest, Search(*guest)->GetItem(1));
      lobby.machine.After(5000, [] { throw std::runtime_error("a match has begun"); });
      lobby.machine.Player = [&, pumps = 0]() mutable {
        if (!lobby.window.Polling && ++pumps == pump) lobby.machine.Press(lobby.window.Command5);
      };
    });
    EXPECT_NO_THROW(lobby.window.cmdCreate_Click());
    EXPECT_EQ(lobby.Buttons(), "Connect");
    EXPECT_EQ(lobby.window.Cancelled, False);
    EXPECT_TRUE(lobby.machine.Boxes.empty());
  }
}

/// A sockets library that fails on demand.
struct FakeSockets : Sockets {
  int start = 0, cleanup = 0, name = 0;
  int cleanups = 0; ///< calls of `WSACleanup`
  std::uint16_t sockets = 100, version = 0x0101;
  bool resolves = true;
  hostent_record entry{4, {std::string("\xC0\xA8\x01\x07", 4), std::string("\x0A\x00\x00\x01", 4)}};

  int WSAStartup(std::uint16_t, WSADATA &data) override {
    data.wVersion = version;
    data.iMaxSockets = sockets;
    return start;
  }
  int WSACleanup() override {
    ++cleanups;
    return cleanup;
  }
  std::int32_t WSAGetLastError() override { return 10050; }
  int gethostname(std::string &host, int) override {
    host = " desk ";
    return name;
  }
  const hostent_record *gethostbyname(const std::string &host) override {
    EXPECT_EQ(host, "desk");
    return resolves ? &entry : nullptr;
  }
};

TEST(AddressLookupTest, EveryAnswerAndEveryFailureHasItsBoxes) {
  using Texts = std::vector<std::string>;
  const std::string told = "Your IP address is: ";
  const std::string error =
      "An error occurred while attempting to locate IP address.  Please make sure that you are "
      "connected to a LAN or the Internet.";
  struct Row {
    const char *name;
    std::function<void(FakeSockets &)> arrange;
    Texts texts;
    int cleanups = 1; ///< calls of `WSACleanup`; none after a failed start or a run-time failure
  };
  const Row rows[] = {
      {"the first of two", [](FakeSockets &) {}, {told + "192.168.1.7"}},
      {"loopback",
       [](FakeSockets &s) {
         s.entry = {4, {std::string("\x7F\x00\x00\x01", 4)}};
       },
       {error}},
      {"IPv6",
       [](FakeSockets &s) {
         s.entry = {16, {std::string("\x20\x01\x0D\xB8\0\0\0\0\0\0\0\0\0\0\0\x2A", 16)}};
       },
       {told + "2001:db8::2a"}},
      {"IPv6 with a single group of zeros",
       [](FakeSockets &s) {
         s.entry = {16, {std::string("\x20\x01\x0D\xB8\0\0\0\1\0\1\0\1\0\1\0\1", 16)}};
       },
       {told + "2001:db8:0:1:1:1:1:1"}},
      {"no start",
       [](FakeSockets &s) { s.start = 1; },
       {"The 32-bit Windows Socket is not responding.", told},
       0},
      {"no sockets",
       [](FakeSockets &s) { s.sockets = 0; },
       {"This application requires a minimum of 1 supported sockets.", told},
       0},
      {"an old version",
       [](FakeSockets &s) { s.version = 0x0001; },
       {"Sockets version 1.0 is not supported by 32-bit Windows Sockets.", told},
       0},
      {"no name",
       [](FakeSockets &s) { s.name = -1; },
       {"Windows Sockets error  10050 has occurred. Unable to successfully get Host Name.", told}},
      {"no answer",
       [](FakeSockets &s) { s.resolves = false; },
       {"Windows Sockets are not responding. Unable to successfully get Host Name.", told}},
      {"no address", [](FakeSockets &s) { s.entry.h_addr_list.clear(); }, {error}, 0},
      {"no clean end",
       [](FakeSockets &s) { s.cleanup = 1; },
       {"Socket error occurred in Cleanup.", told + "192.168.1.7"}},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    HeadlessMachine machine(SNAPWEDGE_GAME_DIR);
    auto sockets = std::make_unique<FakeSockets>();
    row.arrange(*sockets);
    const int &cleanups = sockets->cleanups;
    machine.SocketsLibrary = std::move(sockets);
    TellLocalAddress(machine);
    Texts texts;
    for (const MessageBox &box : machine.Boxes) texts.push_back(box.Text);
    EXPECT_EQ(texts, row.texts);
    EXPECT_EQ(cleanups, row.cleanups);
    const MessageBox &last = machine.Boxes.back();
    EXPECT_EQ(last.Title, last.Critical ? "Error:" : "IP Address:");
  }
}

} // namespace
