#pragma once

// One connection that carries frames: bytes cut into frames on the way in, kept until the network takes them
// on the way out, and the times at which either side was last heard.

#include "platform/clock.h"
#include "platform/network_times.h"
#include "platform/session/frame.h"
#include "platform/session/transport.h"

namespace session {

class Connection {
public:
  Connection(std::unique_ptr<Stream> stream, std::int32_t now)
      : stream_(std::move(stream)), begun_(now), heard_(now), sent_(now) {}

  StreamState GetState() { return stream_->GetState(); }

  /// Takes in what has come, at most MostReadAtOnce bytes. Returns whether anything had.
  bool Fill(std::int32_t now);

  /// The next frame that came.
  /// @throws MalformedError  if the other side sent what is no frame
  std::optional<AnyFrame> Next() { return reader_.Next(); }

  void Write(const AnyFrame &frame, std::int32_t now) { WriteBytes(EncodeFrame(frame), now); }
  void WriteBytes(ByteView bytes, std::int32_t now);

  /// Sends what the network takes now.
  void Flush();

  /// From the handshake's end on long frames may come.
  void EndHandshake() { reader_.SetLargest(LargestFrame); }

  const std::string &Peer() const { return stream_->Peer(); }

  std::size_t Unsent() const { return out_.size(); } ///< bytes that the network hasn't taken yet
  std::int32_t Begun() const { return begun_; }
  std::int32_t Heard() const { return heard_; } ///< when anything last came
  std::int32_t Sent() const { return sent_; }   ///< when anything was last written

private:
  std::unique_ptr<Stream> stream_;
  FrameReader reader_{LargestHandshake};
  Bytes out_;
  std::int32_t begun_;
  std::int32_t heard_;
  std::int32_t sent_;
};

} // namespace session
