// Layout and texts of the launch window. Coordinates are in twips.

#include "net/frm_new_net.h"

#include <functional>
#include <utility>

const std::string LaunchCaption = "Snapwedge V1.0 - the table-top flick game";

namespace {

constexpr Color LightGreen{128, 255, 128};
constexpr Color DarkGrey{64, 64, 64};
constexpr float HeadingPoints = 12.0f;
constexpr float TextPoints = 9.75f;
constexpr float SmallPoints = 8.25f;

const std::string Rules =
    "Players must get part of the snapwedge to hang over the far edge of the field without falling off, in "
    "order to score a Touchdown (6 points).  Each player has 3 chances and must score a Touchdown on the 3rd "
    "attempt only.  Players are awarded 3 points for reaching the circular bonus area (located near the goal "
    "post) on their 1st attempt.  1 point is awarded for completing a field goal following a Touchdown.  "
    "Good Luck!";

void Put(Control &control, const std::string &name, int left, int top, int width, int height) {
  control.Name = name;
  control.Place = FromTwips(left, top, width, height);
  control.Font.Points = TextPoints;
}

void Put(Label &label, const std::string &name, int left, int top, int width, int height,
         const std::string &caption, Align alignment = Align::Left) {
  Put(static_cast<Control &>(label), name, left, top, width, height);
  label.Caption = caption;
  label.Alignment = alignment;
  label.ForeColor = LightGreen;
}

void PutHeading(Label &label, const std::string &name, int left, int top, int width, int height,
                const std::string &caption) {
  Put(label, name, left, top, width, height, caption, Align::Center);
  label.Font.Points = HeadingPoints;
}

void Put(CommandButton &button, const std::string &name, int left, int top, int width, int height,
         const std::string &caption, std::function<void()> click) {
  Put(static_cast<Control &>(button), name, left, top, width, height);
  button.Caption = caption;
  button.Click = std::move(click);
}

void PutLine(Line &line, const std::string &name, int left, int top, int right, int bottom) {
  Put(static_cast<Control &>(line), name, left, top, right - left, bottom - top);
  line.ForeColor = LightGreen;
}

} // namespace

frmNewNet::frmNewNet(Machine &onMachine, Program &ofProgram) : program(ofProgram), machine(onMachine) {
  Name = "frmNewNet";
  Caption = LaunchCaption;
  Width = 9555 / TwipsPerPixel;
  Height = 7155 / TwipsPerPixel;
  Picture = "frmNewNet";
  QueryClose = [] { throw ProgramEnd{}; };
  LayOutLeft();
  LayOutRight();
  // The order of Tab: down the left half, then down the right.
  Controls = {&Label8,         &Line3,      &Label9,   &Command3,    &Command6, &Label5,  &Line1,
              &Label6,         &Text1,      &Label10,  &Label7,      &Check1,   &Label11, &Check2,
              &Label12,        &Combo1,     &Command1, &Command2,    &Label4,   &Line2,   &Label2,
              &lstConnections, &cmdConnect, &Shape1,   &Label1,      &txtName,  &cmdJoin, &cmdCreate,
              &Command4,       &Command5,   &Label3,   &lstSessions, &Command8, &Command7};
}

void frmNewNet::LayOutLeft() {
  PutHeading(Label8, "Label8", 360, 1320, 3855, 375, "Rules:");
  PutLine(Line3, "Line3", 480, 1680, 4200, 1680);
  Put(Label9, "Label9", 480, 1680, 3735, 1815, Rules);
  Label9.ForeColor = {0, 0, 0};
  Label9.Font = {"MS Sans Serif", SmallPoints, false};
  Label9.WordWrap = true;
  Label9.Border = true;
  Put(Command3, "Command3", 480, 3600, 1815, 375, "Controls", [this] { Command3_Click(); });
  Put(Command6, "Command6", 2400, 3600, 1815, 375, "Background", [this] { Command6_Click(); });

  PutHeading(Label5, "Label5", 360, 3960, 3855, 375, "Game Options:");
  PutLine(Line1, "Line1", 480, 4320, 4200, 4320);
  Put(Label6, "Label6", 480, 4320, 2295, 255, "Rounds to Play:", Align::Right);
  Put(Text1, "Text1", 3000, 4320, 375, 285);
  Text1.Text = "5";
  Text1.MaxLength = 2; // digits of 99
  Put(Label10, "Label10", 3480, 4320, 735, 255, "(1-99)");
  Put(Label7, "Label7", 480, 4680, 2295, 255, "Stadium/Sky On:", Align::Right);
  Put(Check1, "Check1", 3000, 4680, 255, 255);
  Check1.Click = [this] { Check1_Click(); };
  Put(Label11, "Label11", 480, 4920, 2295, 255, "Messages On:", Align::Right);
  Put(Check2, "Check2", 3000, 4920, 255, 255);
  Check2.Click = [this] { Check2_Click(); };
  for (CheckBox *box : {&Check1, &Check2}) {
    box->Value = 1;
    box->HasBackColor = true;
    box->BackColor = DarkGrey;
    box->ForeColor = LightGreen;
  }
  Put(Label12, "Label12", 480, 5160, 2295, 255, "Computer Skill Level:", Align::Right);
  Put(Combo1, "Combo1", 3000, 5160, 1095, 315);
  Combo1.Font.Points = SmallPoints;
  Combo1.Announced = true;
  for (const SkillLevel &level : SkillLevels) {
    if (level == program.Skill) Combo1.ListIndex = static_cast<int>(Combo1.List.size());
    Combo1.List.emplace_back(level.Name);
  }
  Combo1.Click = [this] { Combo1_Click(); };
  Put(Command1, "Command1", 480, 5520, 1815, 375, "VS, Computer", [this] { Command1_Click(); });
  Put(Command2, "Command2", 2400, 5520, 1815, 375, "VS. Human", [this] { Command2_Click(); });
}

void frmNewNet::LayOutRight() {
  PutHeading(Label4, "Label4", 5280, 1320, 3855, 375, "Network Play Options:");
  PutLine(Line2, "Line2", 5280, 1680, 9000, 1680);
  Put(Label2, "Label2", 5280, 1680, 2655, 255, "Connection Methods:");
  Put(lstConnections, "lstConnections", 5280, 1920, 3735, 840);
  Put(cmdConnect, "cmdConnect", 5280, 3000, 1575, 495, "Connect", [this] { cmdConnect_Click(); });
  Put(cmdJoin, "cmdJoin", 5280, 3600, 1575, 375, "Join", [this] { cmdJoin_Click(); });
  Put(Command4, "Command4", 5280, 4080, 1575, 375, "Refresh", [this] { Command4_Click(); });
  Put(Label3, "Label3", 5280, 4560, 3855, 255, "Available Games (Local Network):");
  Put(lstSessions, "lstSessions", 5280, 4800, 3735, 645);
  for (ListBox *list : {&lstConnections, &lstSessions}) list->Font = {"MS Sans Serif", SmallPoints, false};
  Put(Shape1, "Shape1", 7080, 3000, 1935, 1575);
  Shape1.ForeColor = LightGreen;
  Put(Label1, "Label1", 7200, 3000, 1695, 255, "Session Name:");
  Put(txtName, "txtName", 7200, 3240, 1695, 285);
  txtName.Font.Points = SmallPoints;
  txtName.Text = "SNWG";
  Put(cmdCreate, "cmdCreate", 7200, 3600, 1695, 375, "Create", [this] { cmdCreate_Click(); });
  Put(Command5, "Command5", 7200, 4080, 1695, 375, "Cancel", [this] { Command5_Click(); });
  Put(Command8, "Command8", 5280, 5520, 2295, 375, "What's my IP address?", [this] { Command8_Click(); });
  Command8.Font.Points = SmallPoints;
  Put(Command7, "Command7", 7800, 5520, 1215, 375, "ReadMe", [this] { Command7_Click(); });
  ResetButtons();
}
