#pragma once

// How a search for sessions asks the player where to search and reports its progress and result.

#include <functional>
#include <memory>
#include <optional>
#include <string>

class Machine;

/// Why a search found nobody. If several reasons apply, the last in this order is shown.
enum class NobodyFound {
  InvalidEntry,  ///< the entry is neither a name nor an address
  UnknownName,   ///< the name doesn't resolve
  NobodyAnswers, ///< no reply
  NoGame,        ///< the computer replies, but no game listens there
  Full,          ///< the game there takes no more players
  OtherVersion,  ///< the game there speaks another version of the protocol
};

class SearchPrompt {
public:
  virtual ~SearchPrompt() = default;

  /// Waits for the player's decision. Returns the entry; nothing if the player gives up.
  virtual std::optional<std::string> Ask() = 0;

  /// Shows the progress of a running search. Returns false once the player has cancelled it.
  virtual bool ShowSearching(const std::string &what) = 0;

  /// Shows why nobody was found. The next `Ask` lets the player correct the entry and try again.
  /// @param port  the port that the host has to open
  virtual void ShowNobodyFound(NobodyFound why, int port) = 0;
};

/// Shows a prompt; its destructor hides it.
/// @param host  initial entry
using MakeSearchPrompt =
    std::function<std::unique_ptr<SearchPrompt>(Machine &machine, const std::string &host)>;
