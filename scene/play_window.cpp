// The controls of the play window: layout, looks, and the colours that mark the side on turn.

#include "match/frm_snapwedge.h"
#include "match/shot_power.h"

#include <string>

namespace {

constexpr Color Black{0, 0, 0};
constexpr Color Yellow{255, 255, 0};
constexpr Color DimYellow{192, 192, 0};
constexpr Color LightRed{255, 192, 192};
constexpr Color AquaBlue{192, 255, 255};
constexpr Color Cream{255, 250, 224};
constexpr float HintPoints = 9.0f;

constexpr int ScaleWidth = 82; ///< of the meter, pixels

void LayOut(Label &label, const std::string &name, Rectangle place, Color color, Align alignment,
            const std::string &caption) {
  label.Name = name;
  label.Place = place;
  label.ForeColor = color;
  label.Alignment = alignment;
  label.Caption = caption;
}

void LayOut(TextBox &box, const std::string &name, Rectangle place, Color back) {
  box.Name = name;
  box.Place = place;
  box.HasBackColor = true;
  box.BackColor = back;
  box.Enabled = false;
}

void LayOutCard(PictureBox &card, const std::string &name, int top) {
  card.Name = name;
  card.Place = {432, top, 201, 177};
  card.Picture = name;
  card.Visible = false;
  card.Announced = true;
}

} // namespace

const std::string PlayCaption = "Snapwedge V1.01";

frmSnapwedge::frmSnapwedge(Machine &onMachine, Program &ofProgram)
    : program(ofProgram), machine(onMachine), RMCanvas1(onMachine) {
  Name = "frmSnapwedge";
  Caption = PlayCaption;
  Width = 639;
  Height = 478;
  Picture = "frmSnapwedge";
  HasBackColor = true;
  BackColor = Black;
  CapturesPointer = true;
  KeepsScreenAwake = program.GameMode == "INET"; // there is no input during the other player's turn
  QueryClose = [this] { Quit(); };
  Deactivate = [this] { LetGo(); };

  LayOut(lblPlayer1, "lblPlayer1", {104, 6, 153, 17}, Yellow, Align::Left, "Home Team Score: 0");
  LayOut(lblPlayer2, "lblPlayer2", {376, 6, 161, 17}, DimYellow, Align::Right, "Away Team Score: 0");
  LayOut(Label3, "Label3", {248, 6, 17, 17}, Yellow, Align::Left, "<");
  LayOut(Label4, "Label4", {376, 6, 17, 17}, Yellow, Align::Left, ">");
  LayOut(Label1, "Label1", {278, 0, 81, 17}, Yellow, Align::Center, "Round: 1");
  LayOut(Label2, "Label2", {278, 16, 81, 17}, Yellow, Align::Center, "Shots: 3");
  LayOut(Label5, "Label5", {0, 0, 97, 17}, Black, Align::Left, "");
  Label3.Visible = false;
  Label4.Visible = false;
  Label3.AccessibleName = "Home Team's turn";
  Label4.AccessibleName = "Away Team's turn";

  LayOut(lblHint, "lblHint", {110, 449, 526, 17}, Cream, Align::Left, "");
  lblHint.Font.Points = HintPoints;

  LayOut(Text1, "Text1", {112, 30, 417, 27}, LightRed);
  LayOut(Text2, "Text2", {110, 420, 417, 27}, AquaBlue);
  Text1.AccessibleName = "The other player's message";
  Text1.Locked = true;
  Text2.AccessibleName = "Your message";
  Text2.MaxLength = LongestChat;
  Text2.KeyPress = [this](std::int16_t keyCode) { Text2_KeyPress(keyCode); };

  lblPlayer1.Announced = lblPlayer2.Announced = lblHint.Announced = Text1.Announced = true;

  RMCanvas1.Name = "RMCanvas1";
  RMCanvas1.AccessibleName = "The table";
  RMCanvas1.Place = {112, 58, 417, 361};
  RMCanvas1.GotFocus = [this] { HintWritten(); };
  RMCanvas1.KeyDown = [this](std::int16_t key, std::int16_t shift) { RMCanvas1_KeyDown(key, shift); };
  RMCanvas1.KeyUp = [this](std::int16_t key, std::int16_t shift) { RMCanvas1_KeyUp(key, shift); };
  RMCanvas1.MouseDown = [this](std::int16_t button, std::int16_t shift, float x, float y) {
    RMCanvas1_MouseDown(button, shift, x, y);
  };
  RMCanvas1.MouseUp = [this](std::int16_t button, std::int16_t shift, float x, float y) {
    RMCanvas1_MouseUp(button, shift, x, y);
  };

  ProgressBar1.Name = "ProgressBar1";
  ProgressBar1.AccessibleName = "Power";
  ProgressBar1.Place = {536, 32, 17, 409};
  ProgressBar1.Vertical = true;
  ProgressBar1.ScaleWidth = ScaleWidth;
  ProgressBar1.CapFrom = StrongestAimed;

  LayOutCard(Picture3, "Picture3", 56);
  LayOutCard(Picture5, "Picture5", 88);
  LayOutCard(Picture1, "Picture1", 112);
  LayOutCard(Picture2, "Picture2", 144);
  LayOutCard(Picture4, "Picture4", 176);
  LayOutCard(Picture7, "Picture7", 208);
  LayOutCard(Picture6, "Picture6", 240);

  LayOutBoards();

  Controls = {&lblPlayer1, &lblPlayer2, &Label3,   &Label4,   &Label1,       &Label2,   &Label5,
              &lblHint,    &RMCanvas1,  &Text1,    &Text2,    &ProgressBar1, &Picture3, &Picture5,
              &Picture1,   &Picture2,   &Picture4, &Picture7, &Picture6};
}

void frmSnapwedge::TurnColor() {
  if (Player == 1) {
    lblPlayer1.ForeColor = Yellow;
    lblPlayer2.ForeColor = DimYellow;
    Label3.Visible = true;
    Label4.Visible = false;
  }
  if (Player == 2) {
    lblPlayer1.ForeColor = DimYellow;
    lblPlayer2.ForeColor = Yellow;
    Label4.Visible = true;
    Label3.Visible = false;
  }
  LightBoards();
  ShowShots();
  ShowRound();
}
