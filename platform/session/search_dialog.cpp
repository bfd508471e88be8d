#include "platform/session/search_dialog.h"

namespace session {

namespace {

constexpr int LongestHost = 255; ///< characters

} // namespace

SearchDialog::SearchDialog(Machine &machine, const std::string &host) : machine_(machine) {
  Name = "frmSearch";
  Caption = "Locate Session";
  Width = 376;
  Height = 124;

  Label1.Name = "Label1";
  Label1.Caption =
      "Enter the computer name or IP address of the host. Leave the box blank to search the local "
      "network.";
  Label1.WordWrap = true;
  Label1.Place = {12, 10, 352, 34};

  Text1.Name = "Text1";
  Text1.AccessibleName = "Computer name or IP address";
  Text1.Place = {12, 50, 352, 24};
  Text1.MaxLength = LongestHost;
  Text1.Text = host;
  Text1.SelLength = static_cast<int>(host.size());

  Command1.Name = "Command1";
  Command1.Caption = "OK";
  Command1.Place = {188, 86, 84, 28};
  Command1.Default = true;
  Command1.Click = [this] { Answer(true); };

  Command2.Name = "Command2";
  Command2.Caption = "Cancel";
  Command2.Place = {280, 86, 84, 28};
  Command2.Cancel = true;
  Command2.Click = [this] { Answer(false); };

  Controls = {&Label1, &Text1, &Command1, &Command2};
}

std::optional<std::string> SearchDialog::Ask() {
  machine_.SetFocus(Text1);
  machine_.ShowModal(*this);
  if (!search_) return std::nullopt;
  return Text1.Text;
}

void SearchDialog::Answer(bool search) {
  search_ = search;
  machine_.Hide(*this);
}

} // namespace session
