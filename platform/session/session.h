#pragma once

// What the host's and the joiner's side of a session have in common.

#include "platform/session/link.h"

namespace session {

class Session {
public:
  explicit Session(bool playerFirst) : link_(playerFirst) {}
  virtual ~Session() = default;

  /// Handles everything that is due. Never blocks and never calls the game.
  virtual void Poll(std::int32_t now) = 0;

  /// Accepts no more joiners and tells the other side that this program leaves.
  virtual void SayBye(std::int32_t now) = 0;

  /// When `Poll` is due next even if nothing arrives.
  virtual std::optional<std::int32_t> NextDeadline() const = 0;

  Link &GetLink() { return link_; }

protected:
  Link link_;
};

} // namespace session
