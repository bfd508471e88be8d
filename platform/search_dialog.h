#pragma once

// The dialog of the Internet connection method: where to search for a session, how the search goes, and what
// to look at when nobody was found.

#include "platform/machine.h"

#include <optional>

/// Why a search found nobody. Of several reasons the later one says more.
enum class NobodyFound {
  NoPlace,       ///< what was entered is no name and no address
  UnknownName,   ///< no address belongs to the name, or no name server answers
  NobodyAnswers, ///< silence
  NoGame,        ///< a computer answers, but no game waits there
  Full,          ///< a game is there that takes nobody any more
  OtherVersion,  ///< a game is there that speaks another version of the protocol
};

class SearchDialog : public Window {
public:
  /// Puts the dialog up; its end takes it down.
  /// @param host  what stands in the text box at first
  SearchDialog(Machine &machine, const std::string &host);
  ~SearchDialog() override { machine_.Hide(*this); }

  /// Waits until the player has decided. Returns what was entered; nothing if the dialog was given up.
  std::optional<std::string> Ask();

  /// Tells what the search does, while it runs. Returns false as soon as the player has given it up.
  bool ShowSearching(const std::string &what);

  /// Tells why nobody was found. The next `Ask` lets the player correct the place and try again.
  /// @param port  that the host has to open
  void TellNobody(NobodyFound why, int port);

  Label Label1; ///< what to enter
  TextBox Text1;
  Label Label2;           ///< hint, state of the search, or why nobody was found
  CommandButton Command1; ///< "OK", "Try again" after a search
  CommandButton Command2; ///< "Cancel", "Close" after a search

private:
  enum class Answer { None, Search, GiveUp };

  void LayOut();

  Machine &machine_;
  Machine::ModalScope scope_;
  Answer answer_ = Answer::None;
};
