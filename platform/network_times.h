#pragma once

// Every time-out and interval of the network, ms. docs/protocol.md explains those of the protocol. The pauses
// of a match are in match/match_loop.cpp.

#include <cstdint>

// The connection.
constexpr std::int32_t SignOfLifeMs = 2000; ///< longest pause between two frames of a sender
constexpr std::int32_t SilenceMs = 10000;   ///< a connection is broken after this long without a frame
constexpr std::int32_t GiveUpMs = 30000; ///< a peer that doesn't reconnect or acknowledge is lost after this
constexpr std::int32_t RedialMs = 1000;  ///< between two attempts to connect
constexpr std::int32_t DialMs = 4000;    ///< one attempt, from connect to the end of the handshake
constexpr std::int32_t PendingMs = 5000; ///< a new connection's time to send its first frame
constexpr std::int32_t OpenMs = 5000; ///< joining: until the host answers, and again until it has our player
constexpr std::int32_t FarewellMs = 300; ///< at the end, for sending what is still queued

// The search.
constexpr std::int32_t LookupMs = 8000;  ///< name resolution; leaves time for a lost query to be repeated
constexpr std::int32_t SearchMs = 1000;  ///< waiting for answers
constexpr std::int32_t AskAgainMs = 300; ///< between two sendings of the question

// Polling.
constexpr std::int32_t NetworkPollMs = 5; ///< longest sleep while something may arrive
constexpr std::int32_t LobbyPollMs = 25;  ///< the same while a host waits for a joiner

// The match.
constexpr std::int32_t FinalDeliveryMs = 60000; ///< at the end, for the last messages to be delivered
constexpr std::int32_t LineBackMs = 4000;       ///< for which the title says that the line is back

// The home router.
constexpr std::int32_t RouterLeaseMs = 900000; ///< lifetime of a port mapping; a crash leaves it open so long
constexpr std::int32_t RouterRenewMs = 300000; ///< a mapping is renewed after this
constexpr std::int32_t RouterRetryMs = 60000;  ///< between two searches for a router
constexpr std::int32_t RouterFirstAnswerMs = 2000; ///< waiting for the public address
constexpr std::int32_t RouterFarewellMs = 1000;    ///< at the end, for the mapping to be removed
constexpr std::int32_t NatPmpAnswerMs = 800;       ///< three requests, the repeats after 250 and 500 ms
constexpr std::int32_t UpnpAnswerMs = 1000;        ///< a search for one type of device
