#include "net/received.h"

#include "match/program.h"
#include "match/results.h"
#include "match/shot_power.h"
#include "platform/plain_text.h"

#include <array>
#include <cmath>

namespace {

constexpr float FarthestPlace = 300.0f;    ///< scene units from the origin, in any axis
constexpr double VectorTolerance = 0.001;  ///< for unit length and right angle
constexpr std::int32_t PointsInRound = 10; ///< maximum for one side
constexpr std::size_t LongestBuildTag = 8; ///< bytes

/// Runs a reader; returns nothing if a field is missing or of the wrong type.
template <class Reader> auto Guarded(Reader &&reader) -> decltype(reader()) {
  try {
    return reader();
  } catch (const DirectPlayError &) {
    return std::nullopt;
  }
}

double Dot(const float *a, const float *b) {
  return static_cast<double>(a[0]) * b[0] + static_cast<double>(a[1]) * b[1] +
         static_cast<double>(a[2]) * b[2];
}

bool IsUnit(const float *vector) { return std::abs(std::sqrt(Dot(vector, vector)) - 1.0) <= VectorTolerance; }

} // namespace

std::optional<ReceivedShot> ReadShot(DirectPlayMessage &message) {
  return Guarded([&]() -> std::optional<ReceivedShot> {
    std::array<float, 10> value{};
    for (float &each : value) {
      each = message.ReadSingle();
      if (!std::isfinite(each)) return std::nullopt;
    }
    const std::int32_t player = message.ReadLong();
    if (!message.AtEnd() || (player != 1 && player != 2)) return std::nullopt;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (std::abs(value[axis]) > FarthestPlace) return std::nullopt;
    }
    const float force = value[3];
    const float *direction = &value[4];
    const float *up = &value[7];
    if (force < 0.0f || force > OverchargedFlick) return std::nullopt;
    if (!IsUnit(direction) || !IsUnit(up) || std::abs(Dot(direction, up)) > VectorTolerance)
      return std::nullopt;
    return ReceivedShot{value[0],
                        value[1],
                        value[2],
                        force,
                        value[4],
                        value[5],
                        value[6],
                        value[7],
                        value[8],
                        value[9],
                        static_cast<std::int16_t>(player)};
  });
}

std::optional<ReceivedVersion> ReadVersion(DirectPlayMessage &message) {
  return Guarded([&]() -> std::optional<ReceivedVersion> {
    const std::string build = message.ReadString();
    const std::int32_t number = message.ReadLong();
    if (!message.AtEnd() || build.size() > LongestBuildTag) return std::nullopt;
    return ReceivedVersion{PlainText(build, LongestBuildTag), number};
  });
}

std::optional<ReceivedScore> ReadScore(DirectPlayMessage &message, std::int16_t roundsBegun) {
  return Guarded([&]() -> std::optional<ReceivedScore> {
    const ReceivedScore score{message.ReadLong(), message.ReadLong(), message.ReadLong()};
    const std::int32_t most = PointsInRound * roundsBegun;
    if (!message.AtEnd() || score.Home < 0 || score.Away < 0 || score.Home > most || score.Away > most ||
        score.Round < 0 || score.Round > MostRounds) {
      return std::nullopt;
    }
    return score;
  });
}

std::optional<std::int16_t> ReadResult(DirectPlayMessage &message) {
  return Guarded([&]() -> std::optional<std::int16_t> {
    const std::int32_t result = message.ReadLong();
    if (!message.AtEnd() || result < Results::First || result > Results::Last) return std::nullopt;
    return static_cast<std::int16_t>(result);
  });
}

std::optional<std::string> ReadChat(DirectPlayMessage &message) {
  return Guarded([&]() -> std::optional<std::string> {
    const std::string sent = message.ReadString();
    if (!message.AtEnd()) return std::nullopt;
    return PlainText(sent, LongestChat);
  });
}

bool NothingFollows(DirectPlayMessage &message) { return message.AtEnd(); }
