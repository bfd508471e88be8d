// Records shots in the real play window: a strip of frames for each, from the press of the button to the
// card. The input is timed by frames and the computer's errors are seeded, so the output is reproducible.
//   window_films DIRECTORY

#include "match/frm_snapwedge.h"
#include "tools/built_game.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int InFilm = 12, Columns = 4; ///< frames in a strip, and in a row of it
constexpr std::size_t Kept = 3;         ///< every third frame is kept
constexpr int Gap = 4;                  ///< pixels between frames
constexpr int NoPress = -1;
constexpr std::uint32_t TouchdownSeed = 0; ///< the computer's shots end in a Touchdown

/// Reports new frames and cards.
class FilmedMachine : public BuiltGameMachine {
public:
  using BuiltGameMachine::BuiltGameMachine;
  void DrawCanvas(Canvas &canvas) override {
    DesktopMachine::DrawCanvas(canvas);
    if (OnFrame) OnFrame();
  }
  void Repaint(Window &window) override {
    DesktopMachine::Repaint(window);
    if (OnCard) OnCard();
  }

  std::function<void()> OnFrame; ///< the scene has been drawn
  std::function<void()> OnCard;  ///< a card has come up
  std::uint32_t Seed = 0;        ///< of the computer's next draw

protected:
  std::uint32_t RandomSeed() override { return Seed++; }
};

/// A match of two players at one mouse, with scripted input, or against the computer.
class Match {
public:
  explicit Match(FilmedMachine &machine) : machine_(machine), program_(machine), window_(machine, program_) {
    program_.GameMode = "Human";
    program_.SoundOn = False;
    window_.SetUp();
    window_.Round = 1;
    window_.PostScore();
  }
  ~Match() { machine_.OnFrame = machine_.OnCard = nullptr; }
  Match(const Match &) = delete;
  Match &operator=(const Match &) = delete;

  /// Turns the aim and holds the button for a number of frames; runs the shot to its end.
  void Shoot(int frames, float turn = 0.0f) {
    Aim(turn);
    for (int i = 0; i < FramesToLook; ++i) window_.Frame("A");
    window_.RMCanvas1_MouseDown(LeftButton, 0, 0, 0);
    for (int i = 0; i < frames && !window_.NoShot && window_.MouseMode == 1; ++i) {
      if (rolling_ && i == frames / 2) {
        rising_ = film_.size();
        Take(); // the scene is still
      }
      window_.Frame("A");
    }
    window_.RMCanvas1_MouseUp(LeftButton, 0, 0, 0);
    for (int i = 0; i < FramesToLook; ++i) window_.Frame("A");
  }

  /// Plays the next point-after: presses the button a number of frames after its start.
  void KickAt(int press, int frames, float turn = 0.0f) {
    press_ = press;
    release_ = press + frames;
    turn_ = turn;
  }

  /// Gives the piece to the computer and records its possession, or its kick from a number of frames after
  /// the start of its point-after.
  void FilmComputer(int kickFrom = NoPress) {
    machine_.Seed = TouchdownSeed;
    press_ = kickFrom;
    program_.GameMode = "Computer";
    window_.Reset();
    Roll(kickFrom != NoPress);
    while (!program_.MyTurn) window_.Frame("B");
  }

  /// Records from the next press to the first card, or to the second for a kick after a Touchdown.
  void Roll(bool kick) {
    rolling_ = !kick;
    filmsKick_ = kick;
    machine_.OnFrame = [this] { HandleFrame(); };
    machine_.OnCard = [this] {
      if (rolling_) Take();
      rolling_ = false;
    };
  }

  QImage Strip() const {
    const std::size_t count = std::min<std::size_t>(film_.size(), InFilm);
    const QSize cell = film_.front().size() + QSize(Gap, Gap);
    const int rows = (static_cast<int>(count) + Columns - 1) / Columns;
    QImage strip(cell.width() * Columns, cell.height() * rows, QImage::Format_RGB32);
    strip.fill(Qt::black);
    QPainter painter(&strip);
    for (std::size_t i = 0; i < count; ++i) {
      const int at = static_cast<int>(i);
      QImage frame = film_[i == 1 && rising_ > 0 ? rising_ : i * (film_.size() - 1) / (count - 1)];
      frame.setDevicePixelRatio(1.0);
      painter.drawImage(at % Columns * cell.width(), at / Columns * cell.height(), frame);
    }
    return strip;
  }

private:
  static constexpr std::int16_t LeftButton = 1;
  static constexpr int FramesToLook = 6;

  void Aim(float turn) { window_.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn); }

  void HandleFrame() {
    if (rolling_ && frames_++ % Kept == 0) Take();
    if (!window_.KickMode) return;
    const int now = kickFrames_++;
    if (now == press_) {
      rolling_ = filmsKick_;
      if (!program_.MyTurn && program_.GameMode == "Computer") return;
      Aim(turn_);
      machine_.Post(window_, [this] { window_.RMCanvas1_MouseDown(LeftButton, 0, 0, 0); });
    }
    if (now == release_) machine_.Post(window_, [this] { window_.RMCanvas1_MouseUp(LeftButton, 0, 0, 0); });
  }

  void Take() {
    if (QWidget *shown = ShownWindow(window_.Name)) film_.push_back(shown->grab().toImage());
  }

  FilmedMachine &machine_;
  Program program_;
  frmSnapwedge window_;
  std::vector<QImage> film_;
  bool rolling_ = false, filmsKick_ = false;
  std::size_t frames_ = 0;
  std::size_t rising_ = 0; ///< the frame in which the meter rises, 0 for none
  int kickFrames_ = 0, press_ = NoPress, release_ = NoPress;
  float turn_ = 0.0f;
};

} // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: window_films DIRECTORY\n");
    return 2;
  }
  try {
    const std::string directory = argv[1];
    std::filesystem::create_directories(directory);
    FilmedMachine machine(argc, argv);
    const auto film = [&](const std::string &name, const std::function<void(Match &)> &play) {
      Match match(machine);
      play(match);
      const std::string file = directory + "/" + name + ".png";
      if (!match.Strip().save(QString::fromStdString(file))) throw std::runtime_error("can't write " + file);
      std::printf("%s\n", file.c_str());
    };
    // A Touchdown: 96, 24 and 16 on the meter.
    const auto touchdown = [](Match &match, bool kick) {
      match.Shoot(12);
      match.Shoot(3);
      match.Roll(kick);
      match.Shoot(2);
    };
    film("flick", [](Match &match) {
      match.Roll(false);
      match.Shoot(12);
    });
    film("second", [](Match &match) {
      match.Shoot(12);
      match.Roll(false);
      match.Shoot(2);
    });
    film("short", [](Match &match) {
      match.Shoot(12);
      match.Shoot(2);
      match.Roll(false);
      match.Shoot(1);
    });
    film("touchdown", [&](Match &match) {
      match.KickAt(0, 5);
      touchdown(match, false);
    });
    film("penalty", [](Match &match) {
      match.Shoot(12);
      match.Roll(false);
      match.Shoot(4);
    });
    film("fall", [](Match &match) {
      match.Shoot(12);
      match.Roll(false);
      match.Shoot(8);
    });
    film("fall-side", [](Match &match) {
      match.Shoot(9);
      match.Roll(false);
      match.Shoot(11, 1.2f);
    });
    film("overcharge", [](Match &match) {
      match.Roll(false);
      match.Shoot(13);
    });
    // The posts return to the middle 178 frames after their start; the kick takes 76.
    film("kick-good", [&](Match &match) {
      match.KickAt(90, 12);
      touchdown(match, true);
    });
    film("kick-wide", [&](Match &match) {
      match.KickAt(20, 12);
      touchdown(match, true);
    });
    film("computer", [](Match &match) { match.FilmComputer(); });
    // The computer kicks some 90 frames after the posts have started.
    film("kick-computer", [](Match &match) { match.FilmComputer(60); });
  } catch (const std::exception &error) {
    std::fprintf(stderr, "window_films: %s\n", error.what());
    return 1;
  }
}
