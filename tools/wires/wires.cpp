// Plays the real program on two computers against each other, by mouse and keys on their displays, over a
// wire between the network namespaces "host" and "joiner", or between home networks. On the wire there is a
// third player beside the joiner. Fails if the two screens disagree.
//   wires SCENE GAME SCREENSHOTS_DIRECTORY HOST_DISPLAY JOINER_DISPLAY THIRD_DISPLAY

#include "tools/wires/home_scenes.h"
#include "tools/wires/writing.h"

#include <X11/Xlib.h>

#include <future>
#include <iostream>
#include <thread>

namespace {

namespace fs = std::filesystem;

const std::vector<int> ScoringPlan = {96, 24, 16}; ///< ends with a corner over the edge

constexpr int BonusAim = 5; ///< pixels to the right, so that the first shot touches the bonus area

constexpr Seconds LineDown(15);
constexpr Seconds ShortAbsence(20);
constexpr Seconds ComingTogetherTakes(5);
constexpr Seconds LongAbsence(60);

void Wire(const std::string &act) {
  Tell("the line: " + act);
  RunScript("line", act);
}

/// Scenes on the bad line.
class LineScenes : public Scene {
public:
  LineScenes(const fs::path &game, const fs::path &pictures, char **displays)
      : Scene(game, pictures, displays), third_("joiner", game, pictures, displays[2], "third-") {}

private:
  Scenes All() override {
    return {{"match", [this] { Match(); }},   {"leave", [this] { Leave(); }},
            {"killed", [this] { Killed(); }}, {"pulled", [this] { Pulled(); }},
            {"full", [this] { Full(); }},     {"cancelled", [this] { Cancelled(); }},
            {"rounds", [this] { Rounds(); }}};
  }

  void OpenGame(const std::string &hostRounds, const std::string &joinerRounds) {
    host_.Start(hostRounds);
    joiner_.Start(joinerRounds);
    host_.Connect();
    host_.Create();
    joiner_.FindGame();
  }

  void Meet(const std::string &hostRounds, const std::string &joinerRounds) {
    OpenGame(hostRounds, joinerRounds);
    joiner_.Join();
    SitDown();
  }

  /// On a busy machine the release may be late, and a match without points would prove little.
  void Match() {
    constexpr int Attempts = 3;
    for (int i = 0; i < Attempts; ++i) {
      if (PlayMatch()) return;
      Tell("the host hasn't scored: once more");
    }
    throw GaveUp("the host never scores");
  }

  /// A match of one round on a bad line with an outage; each side is the Home Team on its own screen. Returns
  /// whether the host has scored.
  bool PlayMatch() {
    Meet("1", "3"); // the host's number of rounds is used
    host_.AtTable().Station("aim");
    joiner_.AtTable().Station("waits");
    const Image nothing = host_.HomeScore();
    Expect(SameLetters(nothing, joiner_.AwayScore()), "nobody has a point");

    host_.TurnAim(BonusAim);
    Shoot(host_, joiner_, {ScoringPlan.front()});
    Wire("break");
    auto mending = std::async(std::launch::async, [] {
      std::this_thread::sleep_for(LineDown);
      Wire("mend");
    });
    // The host plays on alone. Its cards reach the joiner all at once and only flash there.
    if (host_.AtTable().HomeOnTurn()) {
      host_.AtTable().Possess({ScoringPlan.begin() + 1, ScoringPlan.end()});
    }
    const Image typed = host_.Say("your turn");
    host_.Picture("line-down");
    joiner_.Picture("line-down");
    mending.get();

    // The chat line arrives after the host's shots, so it is the joiner's turn then.
    const Image came = joiner_.WaitForChat();
    Expect(SameLetters(came, BeginningOf(typed, came)), "the chat line has come as it was typed");
    Expect(joiner_.AtTable().HomeOnTurn(), "it is the joiner's turn");
    Expect(SameLetters(host_.HomeScore(), joiner_.AwayScore()),
           "the joiner has made up for all that it missed");
    Shoot(joiner_, host_, ShortPlan);
    Expect(!joiner_.AtTable().CardsSeen.empty(), "the joiner's possession has ended in a card");

    const std::string hostCard = WaitForEndCard(host_);
    const std::string joinerCard = WaitForEndCard(joiner_);
    Pause(Milliseconds(500));
    host_.Picture("end");
    joiner_.Picture("end");
    const bool scored = !SameLetters(host_.HomeScore(), nothing);
    Expect(SameLetters(host_.HomeScore(), joiner_.AwayScore()), "the host's points stand on both screens");
    Expect(SameLetters(host_.AwayScore(), joiner_.HomeScore()), "the joiner's points stand on both screens");
    Expect(scored ? hostCard == Won && joinerCard == Lost : hostCard == joinerCard,
           "the host's card: " + hostCard + " The joiner's: " + joinerCard);
    host_.ClickOn(hostCard);
    joiner_.ClickOn(joinerCard);
    host_.WaitForEnd();
    joiner_.WaitForEnd();
    Tell("both programs have ended by themselves");
    return scored;
  }

  /// Esc, on the waiting side and on the side on turn.
  void Leave() {
    Meet("1", "1");
    joiner_.PressEscape();
    ExpectGone(host_, LeavingTakes, "the joiner presses Esc");
    joiner_.WaitForEnd();
    Meet("1", "1");
    host_.PressEscape();
    ExpectGone(joiner_, LeavingTakes, "the host presses Esc");
    host_.WaitForEnd();
  }

  void Killed() {
    Meet("1", "1");
    host_.Kill();
    ExpectGone(joiner_, LeavingTakes, "the host's program is killed");
    Meet("1", "1");
    joiner_.Kill();
    ExpectGone(host_, GivingUpTakes, "the joiner's program is killed");
  }

  /// A short outage is recovered, a long one ends the match.
  void Pulled() {
    Meet("1", "1");
    Wire("break");
    std::this_thread::sleep_for(ShortAbsence);
    Wire("mend");
    std::this_thread::sleep_for(ComingTogetherTakes);
    Shoot(host_, joiner_, ShortPlan);
    host_.ExpectNobodyGone();
    joiner_.ExpectNobodyGone();
    Tell("after 20 s without a line the match goes on");
    Wire("break");
    auto mending = std::async(std::launch::async, [] {
      std::this_thread::sleep_for(LongAbsence);
      Wire("mend");
    });
    ExpectGone(host_, LongAbsence, "a line that stays down, the host");
    ExpectGone(joiner_, LongAbsence, "a line that stays down, the joiner");
    mending.get();
  }

  /// A third player finds the game before the second one takes the place.
  void Full() {
    OpenGame("1", "1");
    third_.Start("1");
    third_.FindGame();
    joiner_.Join();
    SitDown();
    third_.Join();
    third_.AnswerBox(NetworkError, LeavingTakes);
    Tell("a third player gets the box");
    Shoot(host_, joiner_, ShortPlan);
    Tell("and the two play on");
    Part();
  }

  void Cancelled() {
    OpenGame("1", "1");
    host_.Cancel();
    joiner_.Join();
    joiner_.AnswerBox(NetworkError, LeavingTakes);
    Tell("who joins a game that its host has cancelled gets the box");
    host_.Kill();
    joiner_.Kill();
  }

  void Rounds() {
    Meet("3", "7");
    Pause(Milliseconds(2000));
    host_.Picture("rounds");
    joiner_.Picture("rounds");
    Expect(SameLetters(host_.Round(), joiner_.Round()), "both play the host's three rounds");
    Part();
  }

  void Part() {
    host_.Kill();
    joiner_.Kill();
    third_.Kill();
  }

  Computer third_;
};

} // namespace

int main(int argc, char **argv) {
  if (argc != 7) {
    std::cerr << "usage: wires SCENE GAME SCREENSHOTS_DIRECTORY HOST_DISPLAY JOINER_DISPLAY THIRD_DISPLAY"
              << std::endl;
    return 2;
  }
  XInitThreads();
  const std::string scene = argv[1];
  try {
    Tell("scene: " + scene);
    const auto game = fs::absolute(argv[2]);
    const bool known =
        LineScenes(game, argv[3], argv + 4).Play(scene) || HomeScenes(game, argv[3], argv + 4).Play(scene);
    if (!known) throw GaveUp("no such scene");
  } catch (const GaveUp &error) {
    std::cerr << "wires: " << scene << ": " << error.what() << std::endl;
    return 1;
  }
}
