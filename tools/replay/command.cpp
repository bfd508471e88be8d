#include "tools/replay/command.h"

#include "match/program.h"
#include "match/shot_power.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <istream>
#include <limits>
#include <sstream>
#include <vector>

namespace {

constexpr int MostFrames = 10'000'000; ///< more than two days of play

/// The words of one line.
class Words {
public:
  Words(const std::string &line, const CommandReader &reader) : reader_(reader) {
    std::istringstream stream(line);
    for (std::string word; stream >> word;) words_.push_back(word);
  }

  bool Empty() const { return words_.empty(); }

  std::string Next(const std::string &what) {
    if (next_ == words_.size()) reader_.Refuse(what + " is missing");
    return words_[next_++];
  }

  template <class Number> Number NextNumber(const std::string &what, Number lowest, Number highest) {
    const std::string word = Next(what);
    Number value{};
    auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if constexpr (std::is_floating_point_v<Number>) {
      if (error == std::errc::result_out_of_range) { // underflow or overflow
        value = std::strtof(word.c_str(), nullptr);
        error = {};
      }
    }
    if (error != std::errc() || end != word.data() + word.size()) {
      reader_.Refuse(what + " isn't a valid number: \"" + word + '"');
    }
    if constexpr (std::is_floating_point_v<Number>) {
      if (!std::isfinite(value)) reader_.Refuse(what + " isn't finite: \"" + word + '"');
    }
    if (value < lowest || value > highest) reader_.Refuse(what + " is out of range: \"" + word + '"');
    return value;
  }

  float NextFloat(const std::string &what) {
    constexpr float Most = std::numeric_limits<float>::max();
    return NextNumber<float>(what, -Most, Most);
  }

  void End() {
    if (next_ != words_.size()) reader_.Refuse("unexpected: \"" + words_[next_] + '"');
  }

private:
  const CommandReader &reader_;
  std::vector<std::string> words_;
  std::size_t next_ = 0;
};

Command Parse(Words &words, const CommandReader &reader) {
  const std::string name = words.Next("the command");
  if (name == "rounds")
    return RoundsCommand{static_cast<std::int16_t>(words.NextNumber<int>("rounds", 1, MostRounds))};
  if (name == "mode") {
    const std::string mode = words.Next("the mode");
    if (mode != "Human" && mode != "Computer")
      reader.Refuse("the mode is neither Human nor Computer: \"" + mode + '"');
    return ModeCommand{mode};
  }
  if (name == "skill") {
    const std::string skill = words.Next("the skill");
    if (const SkillLevel *level = FindSkillLevel(skill)) return SkillCommand{*level};
    std::string names;
    for (const SkillLevel &level : SkillLevels)
      names += (names.empty() ? "" : ", ") + std::string(level.Name);
    reader.Refuse("the skill is none of " + names + ": \"" + skill + '"');
  }
  if (name == "seed") {
    return SeedCommand{words.NextNumber<std::uint32_t>("seed", 0, std::numeric_limits<std::uint32_t>::max())};
  }
  if (name == "probe") {
    const float x = words.NextFloat("X");
    return ProbeCommand{x, words.NextFloat("Z")};
  }
  if (name == "flick") {
    const float force = words.NextNumber<float>("FORCE", 0.0f, OverchargedFlick);
    return FlickCommand{force, words.NextFloat("TURN")};
  }
  if (name == "kick") {
    const float force = words.NextNumber<float>("FORCE", 0.0f, OverchargedFlick);
    const float turn = words.NextFloat("TURN");
    return KickCommand{force, turn, words.NextNumber<int>("WAIT", 0, MostFrames)};
  }
  if (name == "frames") return FramesCommand{words.NextNumber<int>("N", 0, MostFrames)};
  reader.Refuse("unknown command \"" + name + '"');
}

} // namespace

std::optional<Command> CommandReader::Next() {
  if (peeked_) {
    auto command = std::move(*peeked_);
    peeked_.reset();
    return command;
  }
  for (std::string line; std::getline(input_, line);) {
    ++line_;
    Words words(line, *this);
    if (words.Empty()) continue;
    Command command = Parse(words, *this);
    words.End();
    if (std::holds_alternative<RoundsCommand>(command) && line_ != 1)
      Refuse("rounds is allowed only in the first line");
    return command;
  }
  return std::nullopt;
}

const std::optional<Command> &CommandReader::Peek() {
  if (!peeked_) {
    auto next = Next();
    peeked_ = std::move(next);
  }
  return *peeked_;
}

void CommandReader::Refuse(const std::string &why) const {
  throw BadInput("line " + std::to_string(line_) + ": " + why);
}
