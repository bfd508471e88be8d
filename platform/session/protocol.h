#pragma once

// The fixed numbers of the session protocol, except its times (platform/network_times.h). docs/protocol.md
// explains them.

#include <array>
#include <cstddef>
#include <cstdint>

namespace session {

constexpr std::uint32_t Magic = 0x47574E53; ///< "SNWG" on the wire
constexpr std::uint16_t ProtocolVersion = 1;

constexpr std::uint16_t DefaultPort = 28710; ///< UDP and TCP
constexpr std::uint16_t PortCount = 8;       ///< a host takes the first free port of this many

using Guid = std::array<std::uint8_t, 16>;  ///< bytes in the order of its text form
using Token = std::array<std::uint8_t, 16>; ///< proves that a resuming joiner is the same program

// Sizes, bytes.
constexpr std::size_t LengthBytes = 4;                    ///< of a frame's length prefix
constexpr std::size_t LargestFrame = 64 * 1024;           ///< length prefix included
constexpr std::size_t LargestPayload = LargestFrame - 10; ///< of a message: the frame without its header
constexpr std::size_t LargestHandshake = 512;             ///< largest frame during the handshake
constexpr std::size_t AskBytes = 256;                     ///< of a search question; no answer is longer
constexpr std::size_t LongestName = 128;                  ///< of a session's name
constexpr std::size_t MostOutgoing = 1024 * 1024;         ///< unacknowledged, in total
constexpr std::size_t MostIncoming = 1024 * 1024;  ///< received and not yet taken by the game, in total
constexpr std::size_t MostReadAtOnce = 64 * 1024;  ///< from one connection in one poll
constexpr std::size_t MostOutgoingMessages = 4096; ///< unacknowledged
// Received and not yet taken by the game, which takes up to 40 a second. Its longest pause is 30 s, and even
// then two fast typists stay far below this.
constexpr std::size_t MostIncomingMessages = 512;
constexpr std::size_t MostPending = 16;       ///< connections without a first frame; joiners without a player
constexpr std::size_t MostSessionsFound = 64; ///< rows of a search
constexpr int MostDatagramsAtOnce = 32;       ///< taken in one poll
constexpr int MostAcceptedAtOnce = 16;        ///< connections taken in one poll
constexpr int MostBrokenFrames = 5;           ///< from one peer, before the session is lost
constexpr int MostEmptyResumes = 10;          ///< in a row, each broken before any frame arrived
constexpr int RefusalsThatEnd = 3;            ///< in a row, after which the host program has ended

} // namespace session
