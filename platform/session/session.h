#pragma once

// A session as its host sees it and as its joiner sees it.

#include "platform/session/link.h"

namespace session {

class Session {
public:
  explicit Session(bool playerFirst) : link_(playerFirst) {}
  virtual ~Session() = default;

  /// Does everything that waits. Never blocks and never calls the game.
  virtual void Poll(std::int32_t now) = 0;

  /// Takes nobody in any more and tells the other side that this program leaves.
  virtual void SayBye(std::int32_t now) = 0;

  /// When `Poll` has something to do even if nothing arrives.
  virtual std::optional<std::int32_t> NextDeadline() const = 0;

  Link &GetLink() { return link_; }

protected:
  Link link_;
};

} // namespace session
