#pragma once

// The dialog of the Internet connection method: asks where to search for a session, shows the search, and
// says what to check when nobody was found.

#include "platform/machine.h"
#include "platform/search_prompt.h"

class SearchDialog : public Window, public SearchPrompt {
public:
  /// Shows the dialog; its destructor hides it.
  /// @param host  initial text of the text box
  SearchDialog(Machine &machine, const std::string &host);
  ~SearchDialog() override { machine_.Hide(*this); }

  std::optional<std::string> Ask() override;
  bool ShowSearching(const std::string &what) override;
  void ShowNobodyFound(NobodyFound why, int port) override;

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

/// Shows a `SearchDialog`. A `MakeSearchPrompt`.
std::unique_ptr<SearchPrompt> ShowSearchDialog(Machine &machine, const std::string &host);
