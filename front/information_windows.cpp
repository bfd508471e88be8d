#include "front/information_windows.h"

#include "front/check_files.h"
#include "front/picture_window.h"

namespace {

constexpr float ButtonPoints = 9.75f;
constexpr float DocumentPoints = 12.0f;
constexpr std::int32_t DeafMs = 400; ///< after opening, a picture window ignores clicks for this time

/// The read-me and the one button that closes it.
class frmText : public Window {
public:
  explicit frmText(Machine &onMachine) : machine(onMachine) {
    Name = "frmText";
    Caption = "ReadMe";
    Width = 8550 / TwipsPerPixel;
    Height = 6195 / TwipsPerPixel;
    RichTextBox1.Name = "RichTextBox1";
    RichTextBox1.AccessibleName = "ReadMe";
    RichTextBox1.Place = FromTwips(0, 0, 8535, 5655);
    RichTextBox1.Font = {"Times New Roman", DocumentPoints, false};
    RichTextBox1.Document = "readme.html";
    RichTextBox1.GotFocus = [this] { RichTextBox1_GotFocus(); };
    Command1.Name = "Command1";
    Command1.Caption = "Continue..";
    Command1.Place = FromTwips(120, 5760, 1695, 375);
    Command1.Font.Points = ButtonPoints;
    Command1.Default = true;
    Command1.Click = [this] { Command1_Click(); };
    Controls = {&Command1, &RichTextBox1};
  }

  void Command1_Click() { machine.Hide(*this); }

  /// The document has no caret, so the button keeps the keyboard.
  void RichTextBox1_GotFocus() { machine.SetFocus(Command1); }

  Machine &machine;
  ::RichTextBox RichTextBox1;
  CommandButton Command1;
};

PictureWindow Controls(Machine &machine) { return {machine, "frmControls", "Controls", 7455, 5985}; }

PictureWindow Background(Machine &machine) { return {machine, "frmBackground", "Background", 7395, 5970}; }

void ShowUntilClosed(Machine &machine, PictureWindow window) {
  window.Escape = [&] { machine.Hide(window); };
  window.ShowModal();
}

} // namespace

PictureWindow::PictureWindow(Machine &machine, const std::string &name, const std::string &caption, int width,
                             int height)
    : machine_(machine) {
  Name = name;
  Caption = caption;
  Picture = name;
  Width = width / TwipsPerPixel;
  Height = height / TwipsPerPixel;
  Click = [this] {
    if (machine_.ClockReached(clicksFrom_)) machine_.Hide(*this);
  };
}

void PictureWindow::ShowModal() {
  machine_.ShowModal(*this, [this] { clicksFrom_ = machine_.ClockIn(DeafMs); });
}

void ShowControls(Machine &machine) { ShowUntilClosed(machine, Controls(machine)); }

void ShowBackground(Machine &machine) { ShowUntilClosed(machine, Background(machine)); }

void ShowReadMe(Machine &machine) {
  frmText window(machine);
  machine.ShowModal(window);
}

void CheckInformationFiles(Machine &machine) {
  machine.CheckFiles(Controls(machine));
  machine.CheckFiles(Background(machine));
  machine.CheckFiles(frmText(machine));
}
