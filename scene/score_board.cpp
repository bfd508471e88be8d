// The score board behind the controls of the play window: a lit board for the side on turn, large digits for
// the points, a paper triangle for each attempt left.

#include "match/frm_snapwedge.h"

#include <string>

namespace {

// Positions, pixels.
constexpr int LineTop = 1;
constexpr int HomeLineLeft = 97, AwayLineLeft = 369;
constexpr int TileTop = 34;
constexpr int HomeTileLeft = 4, AwayTileLeft = 51;
constexpr int TileWidth = 46;
constexpr int DigitsTop = 49;
constexpr int DigitWidth = 14;
constexpr int MessageKeyLeft = 536, MessageKeyTop = 467;
constexpr int MouseKeysLeft = 104, MouseKeysTop = 464;
constexpr int TriesTop = 82, TriesLeft = 6, TryWidth = 31;

constexpr int Numerals = 10; ///< in the image of the digits
constexpr int Sides = 2;     ///< in the image of the tiles

constexpr std::int16_t FlashSteps = 60; ///< a little more than a second
constexpr std::int16_t FlashPhase = 10; ///< steps between on and off

void LayOut(SideBoard &board, int side, int lineLeft, int tileLeft) {
  board.Line = {"ScoreLine", lineLeft, LineTop};
  board.Tile = {"ScoreTile", tileLeft, TileTop, false, Sides, side};
  for (BackPicture &digit : board.Digits) digit = {"Digits", tileLeft, DigitsTop, false, Numerals};
}

/// Shows the points, centred on the tile.
void Write(SideBoard &board) {
  const std::string points = std::to_string(board.Points);
  const int left = board.Tile.Left + (TileWidth - static_cast<int>(points.size()) * DigitWidth) / 2;
  for (std::size_t i = 0; i < SideBoard::MostDigits; ++i) {
    BackPicture &digit = board.Digits[i];
    digit.Visible = i < points.size();
    if (!digit.Visible) continue;
    digit.Left = left + static_cast<int>(i) * DigitWidth;
    digit.Column = points[i] - '0';
  }
}

void Light(SideBoard &board, bool onTurn) {
  const bool flash = board.FlashSteps > 0 && (board.FlashSteps - 1) / FlashPhase % 2 == 1;
  const bool lit = onTurn || flash;
  board.Line.Visible = board.Tile.Visible = lit;
  board.Line.Picture = flash ? "ScoreLineFlash" : "ScoreLine";
  board.Tile.Picture = flash ? "ScoreTileFlash" : "ScoreTile";
  for (BackPicture &digit : board.Digits) digit.Picture = lit ? "DigitsLit" : "Digits";
}

void Count(SideBoard &board, std::int32_t points) {
  if (points > board.Points) board.FlashSteps = FlashSteps;
  board.Points = points;
  Write(board);
}

bool Step(SideBoard &board) {
  if (board.FlashSteps == 0) return false;
  board.FlashSteps = static_cast<std::int16_t>(board.FlashSteps - 1);
  return true;
}

} // namespace

void frmSnapwedge::LayOutBoards() {
  LayOut(HomeBoard, 0, HomeLineLeft, HomeTileLeft);
  LayOut(AwayBoard, 1, AwayLineLeft, AwayTileLeft);
  VersionSlip = {"VersionSlip", 0, 0};
  MessageKey = {"MessageKey", MessageKeyLeft, MessageKeyTop};
  MouseKeys = {"MouseKeys", MouseKeysLeft, MouseKeysTop};
  BackPictureFiles = {
      {"VersionSlip", 102, 22}, {"MessageKey", 70, 12}, {"MouseKeys", 304, 16}, {"Try", 28, 23}};
  for (const char *name : {"ScoreLine", "ScoreLineFlash"}) BackPictureFiles.push_back({name, 174, 26});
  for (const char *name : {"ScoreTile", "ScoreTileFlash"})
    BackPictureFiles.push_back({name, Sides * TileWidth, 46});
  for (const char *name : {"Digits", "DigitsLit"})
    BackPictureFiles.push_back({name, Numerals * DigitWidth, 26});
  BackPictures = {&VersionSlip, &MessageKey, &MouseKeys};
  for (SideBoard *board : {&HomeBoard, &AwayBoard}) {
    Write(*board);
    BackPictures.insert(BackPictures.end(), {&board->Line, &board->Tile});
    for (const BackPicture &digit : board->Digits) BackPictures.push_back(&digit);
  }
  int left = TriesLeft;
  for (BackPicture &attempt : Tries) {
    attempt = {"Try", left, TriesTop, true};
    left += TryWidth;
    BackPictures.push_back(&attempt);
  }
}

void frmSnapwedge::LightBoards() {
  // By `MyTurn`, since `Player` is the other computer's number while its shot is replayed.
  const bool started = Player != 0;
  Light(HomeBoard, started && program.MyTurn);
  Light(AwayBoard, started && !program.MyTurn);
}

void frmSnapwedge::ShowShots() {
  Label2.Caption = "Shots: " + std::to_string(Shots);
  // In the point-after `Shots` is back at 3, but a kick is none of them.
  for (std::size_t i = 0; i < Tries.size(); ++i) Tries[i].Visible = !KickMode && static_cast<int>(i) < Shots;
}

void frmSnapwedge::CountScores() {
  Count(HomeBoard, HomeScore);
  Count(AwayBoard, AwayScore);
  LightBoards();
}

void frmSnapwedge::StepBoards() {
  const bool home = Step(HomeBoard), away = Step(AwayBoard);
  if (home || away) LightBoards();
}

void frmSnapwedge::CloseBoards() {
  for (BackPicture &attempt : Tries) attempt.Visible = false;
  // The end card stops the frames, so a flash would stay as it is.
  HomeBoard.FlashSteps = AwayBoard.FlashSteps = 0;
  Light(HomeBoard, HomeScore >= AwayScore);
  Light(AwayBoard, AwayScore >= HomeScore);
  // The score lines keep the colours of the last turn, which a frame would contradict.
  HomeBoard.Line.Visible = AwayBoard.Line.Visible = false;
}
