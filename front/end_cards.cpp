// The newspaper front page at the end of a match.

#include "front/check_files.h"
#include "front/picture_window.h"
#include "match/frm_snapwedge.h"
#include "platform/files.h"
#include "scene/scene_files.h"

#include <string>

namespace {

constexpr float ScorePoints = 18.0f;
constexpr Color PrintersInk{18, 16, 13};

/// A front page with the final score.
class FrontPage : public PictureWindow {
public:
  FrontPage(frmSnapwedge &play, const std::string &name, const std::string &caption, int width, int height)
      : PictureWindow(play.machine, name, caption, width, height) {
    const std::string home = std::to_string(play.HomeScore), away = std::to_string(play.AwayScore);
    lblScore.Name = "lblScore";
    lblScore.Caption = home + " - " + away;
    lblScore.AccessibleName = "Home Team " + home + ", Away Team " + away;
    lblScore.Place = {40, 136, 70, 24};
    lblScore.Font = {"Times New Roman", ScorePoints, true};
    lblScore.ForeColor = PrintersInk;
    lblScore.Alignment = Align::Center;
    Controls = {&lblScore};
  }

private:
  Label lblScore;
};

FrontPage Home(frmSnapwedge &play) { return {play, "frmHome", "Home Team Wins!!", 4500, 3465}; }

FrontPage Away(frmSnapwedge &play) { return {play, "frmAway", "Away Team Wins!!", 4500, 3465}; }

FrontPage Tie(frmSnapwedge &play) { return {play, "frmTie", "It's All Tied Up!", 4470, 3390}; }

/// If the image has become unreadable during the match, the error still tells the result.
void ShowPage(FrontPage &&page) {
  try {
    page.ShowModal();
  } catch (const FileError &error) {
    throw FileError(page.Caption + "\n\n" + error.what());
  }
}

} // namespace

void frmSnapwedge::ShowHome() { ShowPage(Home(*this)); }

void frmSnapwedge::ShowAway() { ShowPage(Away(*this)); }

void frmSnapwedge::ShowTie() { ShowPage(Tie(*this)); }

void CheckMatchFiles(Machine &machine, Program &program) {
  CheckSceneFiles(machine.AppPath());
  frmSnapwedge play(machine, program);
  machine.CheckFiles(play);
  machine.CheckFiles(Home(play));
  machine.CheckFiles(Away(play));
  machine.CheckFiles(Tie(play));
}
