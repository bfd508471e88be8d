#pragma once

// The language of the replay tool: one command per line.

#include "match/program.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>

/// An invalid line; says what is wrong and in which line.
class BadInput : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct RoundsCommand {
  std::int16_t Rounds; ///< 1 to 99
};
struct ModeCommand {
  std::string GameMode; ///< "Human" or "Computer"
};
struct SkillCommand {
  SkillLevel Skill; ///< of the computer
};
struct SeedCommand {
  std::uint32_t Seed;
};
struct ProbeCommand {
  float X, Z; ///< scene units
};
struct FlickCommand {
  float Force; ///< 0 to 120
  float Turn;  ///< radians, added to the current heading
};
struct KickCommand {
  float Force; ///< 0 to 120
  float Turn;  ///< radians
  int Wait;    ///< frames of the point-after before the release
};
struct FramesCommand {
  int Count;
};

using Command = std::variant<RoundsCommand, ModeCommand, SkillCommand, SeedCommand, ProbeCommand,
                             FlickCommand, KickCommand, FramesCommand>;

/// Reads commands and counts lines.
class CommandReader {
public:
  explicit CommandReader(std::istream &input) : input_(input) {}

  /// The next command; nothing at the end of the input. Skips empty lines.
  /// @throws BadInput
  std::optional<Command> Next();

  /// The same, without consuming it.
  const std::optional<Command> &Peek();

  /// @throws BadInput  with that text and the current line number
  [[noreturn]] void Refuse(const std::string &why) const;

private:
  std::istream &input_;
  std::optional<std::optional<Command>> peeked_;
  int line_ = 0;
};
