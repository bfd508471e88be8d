#include "platform/session/connection.h"

#include <array>

namespace session {

bool Connection::Fill(std::int32_t now) {
  std::array<std::uint8_t, 8192> block;
  std::size_t taken = 0;
  while (taken < MostReadAtOnce) {
    const std::size_t count = stream_->Receive(block);
    if (count == 0) break;
    taken += count;
    heard_ = now;
    reader_.Add(ByteView(block).first(count));
  }
  return taken > 0;
}

void Connection::WriteBytes(ByteView bytes, std::int32_t now) {
  out_.insert(out_.end(), bytes.begin(), bytes.end());
  sent_ = now;
}

void Connection::Flush() {
  std::size_t sent = 0;
  while (sent < out_.size()) {
    const std::size_t count = stream_->Send(ByteView(out_).subspan(sent));
    if (count == 0) break;
    sent += count;
  }
  out_.erase(out_.begin(), out_.begin() + static_cast<std::ptrdiff_t>(sent));
}

} // namespace session
