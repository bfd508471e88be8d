#include "platform/search_dialog.h"

namespace {

constexpr int LongestHost = 255;     ///< characters
constexpr std::uint32_t DotMs = 250; ///< a running search shows one more dot after each
constexpr std::uint32_t MostDots = 4;

const std::string Instruction =
    "Enter the computer name or IP address of the host. Leave the box blank to search the local network.";
const std::string Hint =
    "Over the Internet: the host presses Create, then \"What's my IP address?\", and tells you "
    "the address.";

/// What to check on the host's side.
std::string Checklist(int port) {
  return "\n-  Is the address right?"
         "\n-  Has the host pressed Create? Its title bar then says \"Polling...\"."
         "\n-  Is port " +
         std::to_string(port) + ", TCP and UDP, open in the host's router and firewall?";
}

std::string Explanation(NobodyFound why, const std::string &host, int port) {
  switch (why) {
  case NobodyFound::InvalidEntry:
    return '"' + host + "\" is neither a computer name nor an IP address.";
  case NobodyFound::UnknownName:
    return "No computer is known by the name \"" + host +
           "\".\n-  Is it spelled right?\n-  Is this computer connected to the network?";
  case NobodyFound::NobodyAnswers:
    return "Nobody answers at " + host + "." + Checklist(port);
  case NobodyFound::NoGame:
    return host + " answers, but no game waits there." + Checklist(port);
  case NobodyFound::Full:
    return "The game at " + host + " is full: it is already being played.";
  case NobodyFound::OtherVersion:
    return "The game at " + host + " is another version of Snapwedge. Both players need the same one.";
  }
  return {};
}

} // namespace

SearchDialog::SearchDialog(Machine &machine, const std::string &host)
    : machine_(machine), scope_(machine, *this) {
  LayOut();
  Text1.Text = host;
  machine_.Show(*this);
}

void SearchDialog::LayOut() {
  Name = "frmSearch";
  Caption = "Locate Session";
  Width = 416;
  Height = 184;
  QueryClose = [this] { answer_ = Answer::GiveUp; };

  Label1.Name = "Label1";
  Label1.Caption = Instruction;
  Label1.WordWrap = true;
  Label1.Place = {12, 10, 392, 32};

  Text1.Name = "Text1";
  Text1.Place = {12, 48, 392, 24};
  Text1.MaxLength = LongestHost;

  Label2.Name = "Label2";
  Label2.Caption = Hint;
  Label2.WordWrap = true;
  Label2.Font.Bold = false;
  Label2.Announced = true;
  Label2.Place = {12, 80, 392, 60};

  Command1.Name = "Command1";
  Command1.Caption = "OK";
  Command1.Place = {228, 148, 84, 28};
  Command1.Default = true;
  Command1.Click = [this] { answer_ = Answer::Search; };

  Command2.Name = "Command2";
  Command2.Caption = "Cancel";
  Command2.Place = {320, 148, 84, 28};
  Command2.Cancel = true;
  Command2.Click = [this] { answer_ = Answer::GiveUp; };

  Controls = {&Label1, &Text1, &Label2, &Command1, &Command2};
}

std::optional<std::string> SearchDialog::Ask() {
  Text1.Enabled = true;
  Text1.SelLength = static_cast<int>(Text1.Text.size());
  Command1.Enabled = true;
  machine_.SetFocus(Text1);
  answer_ = Answer::None;
  while (answer_ == Answer::None) machine_.Wait();
  if (answer_ == Answer::GiveUp) return std::nullopt;
  return Text1.Text;
}

bool SearchDialog::ShowSearching(const std::string &what) {
  const auto dots = static_cast<std::uint32_t>(machine_.timeGetTime()) / DotMs % MostDots;
  Text1.Enabled = false;
  Command1.Enabled = false;
  Command2.Caption = "Cancel";
  Label2.Announced = !Label2.Caption.starts_with(what); // don't announce every dot
  Label2.Caption = what + " ." + std::string(dots, '.');
  return answer_ != Answer::GiveUp;
}

void SearchDialog::ShowNobodyFound(NobodyFound why, int port) {
  Label2.Caption = Explanation(why, Text1.Text, port);
  Label2.Announced = true;
  Command1.Caption = "Try again";
  Command2.Caption = "Close";
}

std::unique_ptr<SearchPrompt> ShowSearchDialog(Machine &machine, const std::string &host) {
  return std::make_unique<SearchDialog>(machine, host);
}
