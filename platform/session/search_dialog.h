#pragma once

// The dialog of the Internet connection method: where to search for a session.

#include "platform/machine.h"

namespace session {

class SearchDialog : public Window {
public:
  /// @param host  what stands in the text box at first
  SearchDialog(Machine &machine, const std::string &host);

  /// Puts the dialog up until it is answered. Returns the text that was entered; nothing after Cancel.
  std::optional<std::string> Ask();

  Label Label1;
  TextBox Text1;
  CommandButton Command1; ///< OK
  CommandButton Command2; ///< Cancel

private:
  void Answer(bool search);

  Machine &machine_;
  bool search_ = false;
};

} // namespace session
