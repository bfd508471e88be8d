#include "net/frm_new_net.h"

#include "front/check_files.h"
#include "front/information_windows.h"
#include "match/frm_snapwedge.h"
#include "net/address_lookup.h"
#include "platform/plain_text.h"

#include <charconv>
#include <cmath>
#include <iostream>
#include <optional>

namespace {

constexpr int HighColorBits = 16;
constexpr std::int16_t DefaultRounds = 5;
constexpr float SessionSuffixes = 10000.0f; ///< the default session name ends in a number below this

/// A whole number from 1 to 99, with optional blanks around it; nothing for any other text.
std::optional<std::int16_t> ParseRounds(const std::string &text) {
  const std::string digits = Trimmed(text);
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || value < 1 || value > MostRounds) {
    return std::nullopt;
  }
  return static_cast<std::int16_t>(value);
}

/// Loads all sounds and starts those of the launch window.
void StartSounds(Program &program, const Window &window) {
  program.DS->SetCooperativeLevel(window, DSSCL_PRIORITY);
  for (const SoundFile &sound : SoundFiles) {
    program.*sound.Buffer =
        program.DS->CreateSoundBufferFromFile(program.machine.AppPath() / sound.Name, {}, {});
  }
  program.PlayLoop(program.SndCrowd2);
  program.PlayLoop(program.SndCrowd);
  program.PlayOnce(program.SndYeah2);
  program.PlayLoop(program.SndTheme);
  program.PlayOnce(program.SndGuit2);
}

void TellOfNoSound(Program &program, const SoundError &error) {
  std::cerr << "Snapwedge runs without sound: " << error.what() << std::endl;
  program.SoundOn = False;
  program.machine.MsgBox(
      {"Snapwedge will run without sound.  Please make sure that you have the latest DirectX7 Drivers "
       "installed.",
       "Error initializing DirectSound."});
}

void RequireHighColor(Program &program) {
  if (program.DX->SystemBpp() == HighColorBits) return;
  program.machine.MsgBox(
      {"Snapwedge was designed to run in High Color (16 bit).  Please check your display settings.",
       "Error:", true});
  throw ProgramEnd{};
}

} // namespace

void frmNewNet::Form_Load() {
  machine.Randomize();
  SessionSuffix = static_cast<std::int16_t>(std::floor(machine.Rnd() * SessionSuffixes));
  txtName.Text += std::to_string(SessionSuffix);
  program.Rounds = DefaultRounds;
  program.StadiumOn = True;
  Cancelled = False;
  program.SoundOn = True;
  if (!program.DX) program.DX = machine.CreateDirectX();
  try {
    program.DS = program.DX->DirectSoundCreate("");
  } catch (const SoundError &error) {
    TellOfNoSound(program, error);
  }
  RequireHighColor(program);
  if (program.SoundOn) {
    try {
      StartSounds(program, *this);
    } catch (const SoundError &error) {
      TellOfNoSound(program, error);
      RequireHighColor(program);
    }
  }
  FillConnections();
  machine.CheckFiles(*this);
  machine.Show(*this);
  machine.SetFocus(Command1);
}

void frmNewNet::Check1_Click() { program.StadiumOn = Check1.Value ? True : False; }

void frmNewNet::Check2_Click() { program.MessagesOn = Check2.Value ? True : False; }

void frmNewNet::Combo1_Click() { program.Skill = SkillLevels.at(static_cast<std::size_t>(Combo1.ListIndex)); }

bool frmNewNet::TakeRounds() {
  if (const auto rounds = ParseRounds(Text1.Text)) {
    program.Rounds = *rounds;
    return true;
  }
  machine.MsgBox({"Please enter a whole number from 1 to 99.", "Rounds to Play:"});
  Text1.SelStart = 0;
  Text1.SelLength = static_cast<int>(Text1.Text.size());
  machine.SetFocus(Text1);
  return false;
}

void frmNewNet::Command1_Click() {
  if (!TakeRounds()) return;
  machine.Hide(*this);
  program.GameMode = "Computer";
  OpenPlayWindow();
}

void frmNewNet::Command2_Click() {
  if (!TakeRounds()) return;
  machine.Hide(*this);
  program.GameMode = "Human";
  OpenPlayWindow();
}

void frmNewNet::OpenPlayWindow() {
  CheckMatchFiles(machine, program);
  frmSnapwedge play(machine, program);
  program.LaunchWindow = this;
  // In a network game this window stays open behind the play window, but its controls must not work.
  const Machine::ModalScope scope(machine, play);
  play.Load();
}

void frmNewNet::Command3_Click() { ShowControls(machine); }

void frmNewNet::Command6_Click() { ShowBackground(machine); }

void frmNewNet::Command7_Click() { ShowReadMe(machine); }

void frmNewNet::Command8_Click() { TellLocalAddress(machine); }
