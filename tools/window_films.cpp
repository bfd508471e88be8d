// Films shots in the real play window, as who looks over the player's shoulder sees them: a strip of pictures
// for each, from the press of the button to the card. The hand counts pictures, not time: each film comes out
// the same on every day.
//   window_films DIRECTORY

#include "match/frm_snapwedge.h"
#include "platform/desktop/desktop_machine.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int InFilm = 12, Columns = 4; ///< pictures in a strip, and in a row of it
constexpr std::size_t Kept = 3;         ///< every third picture of a film is kept
constexpr int Gap = 4;                  ///< pixels between pictures
constexpr int NoPress = -1;

/// The real machine, on the game as it was built, that tells when its window shows something new.
class FilmedMachine : public DesktopMachine {
public:
  using DesktopMachine::DesktopMachine;
  std::filesystem::path AppPath() const override {
    return std::filesystem::weakly_canonical("/proc/self/exe").parent_path().parent_path() / "game";
  }
  void DrawCanvas(Canvas &canvas) override {
    DesktopMachine::DrawCanvas(canvas);
    if (OnPicture) OnPicture();
  }
  void Repaint(Window &window) override {
    DesktopMachine::Repaint(window);
    if (OnCard) OnCard();
  }

  std::function<void()> OnPicture; ///< the scene has been drawn
  std::function<void()> OnCard;    ///< a card has come up
};

/// A match of two at one mouse, with a hand that shoots.
class Match {
public:
  explicit Match(FilmedMachine &machine) : machine_(machine), program_(machine), window_(machine, program_) {
    program_.GameMode = "Human";
    program_.SoundOn = False;
    window_.SetUp();
    window_.Round = 1;
    window_.PostScore();
  }
  ~Match() { machine_.OnPicture = machine_.OnCard = nullptr; }
  Match(const Match &) = delete;
  Match &operator=(const Match &) = delete;

  /// Turns the aim and holds the button for so many frames; what follows runs to its end.
  void Shoot(int frames, float turn = 0.0f) {
    Aim(turn);
    for (int i = 0; i < FramesToLook; ++i) window_.Frame("A");
    window_.RMCanvas1_MouseDown(LeftButton, 0, 0, 0);
    for (int i = 0; i < frames && !window_.NoShot && window_.MouseMode == 1; ++i) {
      if (rolling_ && i == frames / 2) {
        rising_ = film_.size();
        Take(); // the scene stands still now
      }
      window_.Frame("A");
    }
    window_.RMCanvas1_MouseUp(LeftButton, 0, 0, 0);
    for (int i = 0; i < FramesToLook; ++i) window_.Frame("A");
  }

  /// Plays the point-after that will come: the button goes down so many pictures after its start.
  void KickAt(int press, int frames, float turn = 0.0f) {
    press_ = press;
    release_ = press + frames;
    turn_ = turn;
  }

  /// Films from the next press on, to the first card, or the second if it is a Touchdown's kick.
  void Roll(bool kick) {
    rolling_ = !kick;
    filmsKick_ = kick;
    machine_.OnPicture = [this] { Picture(); };
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
      QImage picture = film_[i == 1 && rising_ > 0 ? rising_ : i * (film_.size() - 1) / (count - 1)];
      picture.setDevicePixelRatio(1.0);
      painter.drawImage(at % Columns * cell.width(), at / Columns * cell.height(), picture);
    }
    return strip;
  }

private:
  static constexpr std::int16_t LeftButton = 1;
  static constexpr int FramesToLook = 6;

  void Aim(float turn) { window_.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn); }

  void Picture() {
    if (rolling_ && pictures_++ % Kept == 0) Take();
    if (!window_.KickMode || window_.NoShot) return;
    const int now = kickPictures_++;
    if (now == press_) {
      Aim(turn_);
      machine_.Post(window_, [this] { window_.RMCanvas1_MouseDown(LeftButton, 0, 0, 0); });
      rolling_ = filmsKick_;
    }
    if (now == release_) machine_.Post(window_, [this] { window_.RMCanvas1_MouseUp(LeftButton, 0, 0, 0); });
  }

  void Take() {
    for (QWidget *widget : QApplication::topLevelWidgets()) {
      if (widget->isVisible() && widget->objectName().toStdString() == window_.Name)
        film_.push_back(widget->grab().toImage());
    }
  }

  FilmedMachine &machine_;
  Program program_;
  frmSnapwedge window_;
  std::vector<QImage> film_;
  bool rolling_ = false, filmsKick_ = false;
  std::size_t pictures_ = 0;
  std::size_t rising_ = 0; ///< the picture in which the meter rises, 0 for none
  int kickPictures_ = 0, press_ = NoPress, release_ = NoPress;
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
    // A possession that ends with a corner over the edge: 96, 24 and 16 of the meter.
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
    // The posts walk out, turn, and are back in the middle 178 pictures after their start; the kick takes 76.
    film("kick-good", [&](Match &match) {
      match.KickAt(90, 12);
      touchdown(match, true);
    });
    film("kick-wide", [&](Match &match) {
      match.KickAt(20, 12);
      touchdown(match, true);
    });
  } catch (const std::exception &error) {
    std::fprintf(stderr, "window_films: %s\n", error.what());
    return 1;
  }
}
