#include "tools/wires/home_scenes.h"

namespace {

const std::string PublicAddress = "50.0.0.1"; // of the host's router
const std::string HostAtHome = "192.168.1.7"; // in its home network
const std::string WrongAddress = "50.0.0.77"; // of no computer

constexpr Seconds RouterTakes(10);
constexpr Seconds RenewalTakes(400);
constexpr Seconds JoiningTakes(5);

void Home(const std::string &act) {
  Tell("home: " + act);
  RunScript("home", act);
}

/// Waits until the router forwards that many ports, and reports the time.
void ExpectPorts(int wanted, const std::string &when, Seconds patience = RouterTakes) {
  const auto begun = Clock::now();
  while (std::stoi(RunScript("home", "ports")) != wanted) {
    if (Clock::now() - begun > patience) throw GaveUp("not true: " + when);
    Pause(Milliseconds(50));
  }
  const auto took = std::chrono::duration_cast<Milliseconds>(Clock::now() - begun).count();
  Tell(when + ": the router forwards " + std::to_string(wanted) + " ports, " + std::to_string(took) +
       " ms later");
}

} // namespace

Scene::Scenes HomeScenes::All() {
  return {{"natpmp", [this] { Router("natpmp"); }},
          {"upnp", [this] { Router("upnp"); }},
          {"renewed", [this] { Renewed(); }},
          {"closed", [this] { Closed(); }},
          {"hostfirewall", [this] { HostFirewall(); }},
          {"joinerfirewall", [this] { JoinerFirewall(); }},
          {"reading", [this] { Reading(); }}};
}

void HomeScenes::Start() {
  host_.Start("1");
  joiner_.Start("1");
}

void HomeScenes::Host() {
  host_.Connect();
  host_.Create();
}

void HomeScenes::PlayMatch() {
  SitDown();
  Shoot(host_, joiner_, ShortPlan);
  Shoot(joiner_, host_, ShortPlan);
  const std::string card = WaitForEndCard(host_);
  Expect(card == WaitForEndCard(joiner_), "a whole match has been played: " + card);
  Pause(Milliseconds(500));
  host_.ClickOn(card);
  joiner_.ClickOn(card);
  host_.WaitForEnd();
  joiner_.WaitForEnd();
}

/// A host behind a router that opens a port on request, and a joiner on the Internet.
void HomeScenes::Router(const std::string &protocol) {
  Home("make " + protocol);
  Start();
  ExpectPorts(0, "before Create");
  Host();
  ExpectPorts(2, "after Create");
  host_.AskAddress();
  Expect(!joiner_.FindsGameAt(WrongAddress), "at a wrong address nobody is found");
  Expect(joiner_.FindsGameAt(PublicAddress), "at the public address the game is found");
  joiner_.Join();
  PlayMatch();
  ExpectPorts(0, "after the match");

  host_.Start("1");
  Host();
  ExpectPorts(2, "after Create");
  host_.Cancel();
  ExpectPorts(0, "after Cancel");
  Host();
  ExpectPorts(2, "after another Create");
  joiner_.Start("1");
  Expect(joiner_.FindsGameAt(PublicAddress), "the game is found again");
  joiner_.Join();
  SitDown();
  const auto begun = Clock::now();
  host_.PressEscape();
  host_.WaitForEnd();
  const auto took = std::chrono::duration_cast<Milliseconds>(Clock::now() - begun).count();
  Tell("the host's program ends " + std::to_string(took) + " ms after Esc");
  ExpectPorts(0, "after Esc");
  ExpectGone(joiner_, LeavingTakes, "the host presses Esc");
}

/// The router loses its port mappings, as after a restart, and is asked again.
void HomeScenes::Renewed() {
  Home("make natpmp");
  Start();
  Host();
  ExpectPorts(2, "after Create");
  Home("forget");
  ExpectPorts(0, "a restarted router");
  ExpectPorts(2, "the host still waits", RenewalTakes);
  Expect(joiner_.FindsGameAt(PublicAddress), "the game is found");
  host_.Kill();
  joiner_.Kill();
}

void HomeScenes::Closed() {
  Home("make closed");
  Start();
  Host();
  host_.AskAddress();
  Expect(!joiner_.FindsGameAt(PublicAddress), "through a router that opens no port nobody is found");
  host_.Kill();
  joiner_.Kill();
}

void HomeScenes::HostFirewall() {
  Home("make lan");
  Home("firewall host");
  Start();
  Host();
  host_.AskAddress();
  Expect(!joiner_.FindsGameAt(""), "a host behind its own firewall isn't found on the local network");
  Expect(!joiner_.FindsGameAt(HostAtHome), "nor at its address");
  host_.Kill();
  joiner_.Kill();
}

void HomeScenes::JoinerFirewall() {
  Home("make lan");
  Home("firewall joiner");
  Start();
  Host();
  Expect(!joiner_.FindsGameAt(""), "a joiner behind its own firewall hears no answer on the local network");
  Expect(joiner_.FindsGameAt(HostAtHome), "at the host's address it finds the game");
  joiner_.Join();
  PlayMatch();
}

/// The window that the host is reading closes when a player joins.
void HomeScenes::Reading() {
  Home("make lan");
  Start();
  Host();
  host_.OpenReadMe();
  Expect(joiner_.FindsGameAt(""), "the game of a host that reads is found");
  joiner_.Join();
  const auto begun = Clock::now();
  while (host_.Sees("ReadMe")) {
    if (Clock::now() - begun > JoiningTakes) throw GaveUp("the ReadMe stays open");
    Pause(Milliseconds(20));
  }
  const auto took = std::chrono::duration_cast<Milliseconds>(Clock::now() - begun).count();
  Tell("the ReadMe closes " + std::to_string(took) + " ms after Join");
  PlayMatch();
}
