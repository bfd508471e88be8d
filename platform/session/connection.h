#pragma once

// One connection that carries frames: splits incoming bytes into frames, buffers outgoing bytes until the
// network takes them, and remembers when either side last sent.

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

  /// Reads what has arrived, at most MostReadAtOnce bytes. Returns whether there was anything.
  bool Fill(std::int32_t now);

  /// The next received frame; nothing if none is complete.
  /// @throws MalformedError  if the bytes are not a valid frame
  std::optional<AnyFrame> Next() { return reader_.Next(); }

  void Write(const AnyFrame &frame, std::int32_t now) { WriteBytes(EncodeFrame(frame), now); }
  void WriteBytes(ByteView bytes, std::int32_t now);

  /// Sends as much as the network takes now.
  void Flush();

  /// Allows frames of full length, which only come after the handshake.
  void EndHandshake() { reader_.SetLargest(LargestFrame); }

  const std::string &Peer() const { return stream_->Peer(); }

  std::size_t Unsent() const { return out_.size(); } ///< bytes that the network hasn't taken yet
  std::int32_t Begun() const { return begun_; }
  std::int32_t Heard() const { return heard_; } ///< time of the last received byte
  std::int32_t Sent() const { return sent_; }   ///< time of the last write

private:
  std::unique_ptr<Stream> stream_;
  FrameReader reader_{LargestHandshake};
  Bytes out_;
  std::int32_t begun_;
  std::int32_t heard_;
  std::int32_t sent_;
};

} // namespace session
