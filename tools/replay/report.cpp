#include "tools/replay/report.h"

#include "match/results.h"

#include <charconv>
#include <cmath>
#include <iostream>
#include <sstream>

namespace {

/// The shortest text that parses to the same 32-bit float. A zero keeps its sign even if a number without a
/// point is parsed as an integer.
std::string Number(float value) {
  if (value == 0.0f && std::signbit(value)) return "-0.0";
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, result.ptr};
}

std::string Triple(const Vector &v) {
  return '[' + Number(v.x) + ',' + Number(v.y) + ',' + Number(v.z) + ']';
}

std::string Quoted(const std::string &text) { return '"' + text + '"'; }

/// One line: a JSON object, fields in the order of insertion.
class JsonLine {
public:
  explicit JsonLine(const std::string &event) { text_ << R"({"event":)" << Quoted(event); }
  JsonLine &Add(const char *name, const std::string &value) {
    text_ << ",\"" << name << "\":" << value;
    return *this;
  }
  JsonLine &Add(const char *name, long value) { return Add(name, std::to_string(value)); }
  void Print() { std::cout << text_.str() << '}' << std::endl; }

private:
  std::ostringstream text_;
};

std::string ResultOf(std::int16_t card) {
  switch (card) {
  case Results::Touchdown:
    return "touchdown";
  case Results::Turnover:
    return "fall";
  case Results::Bonus:
    return "bonus";
  case Results::Penalty:
    return "penalty";
  case Results::Short:
    return "short";
  default:
    return "none";
  }
}

JsonLine Begin(const std::string &event, const AskedShot &asked) {
  JsonLine line(event);
  line.Add("side", Quoted({asked.Side})).Add("force", Number(asked.Force)).Add("turn", Number(asked.Turn));
  return line;
}

void AddScores(JsonLine &line, const frmSnapwedge &window) {
  line.Add("home", window.HomeScore).Add("away", window.AwayScore);
}

std::string Next(const frmSnapwedge &window) { return Quoted(window.program.MyTurn ? "A" : "B"); }

void Print(JsonLine &line, const AskedShot &asked) {
  if (asked.Computer) line.Add("computer", "true");
  line.Print();
}

} // namespace

void ReportFlick(const frmSnapwedge &window, const AskedShot &asked, const SeenShot &seen) {
  JsonLine line = Begin("flick", asked);
  line.Add("attempt", asked.Attempt).Add("steps", seen.Steps).Add("rest", Triple(seen.Place));
  line.Add("dir", Triple(seen.Direction));
  line.Add("corners", '[' + Triple(seen.Corners[0]) + ',' + Triple(seen.Corners[1]) + ',' +
                          Triple(seen.Corners[2]) + ']');
  line.Add("result", Quoted(ResultOf(seen.Card))).Add("card", seen.Card);
  AddScores(line, window);
  line.Add("next", Next(window)).Add("shots", window.Shots).Add("round", window.Round);
  Print(line, asked);
}

void ReportKick(const frmSnapwedge &window, const AskedShot &asked, const SeenShot &seen) {
  JsonLine line = Begin("kick", asked);
  line.Add("steps", seen.Steps).Add("end", Triple(seen.Place)).Add("posts_x", Number(seen.PostsX));
  line.Add("good", seen.Card == Results::GoodKick ? "true" : "false").Add("card", seen.Card);
  AddScores(line, window);
  line.Add("next", Next(window)).Add("round", window.Round);
  Print(line, asked);
}

void ReportProbe(float x, float z, const std::string &surface) {
  JsonLine line("probe");
  line.Add("x", Number(x))
      .Add("z", Number(z))
      .Add("surface", surface.empty() ? "null" : Quoted(surface))
      .Print();
}

void ReportNoKick() { JsonLine("nokick").Print(); }

void ReportOver(const frmSnapwedge &window, const std::string &card) {
  JsonLine line("over");
  AddScores(line, window);
  line.Add("card", Quoted(card)).Print();
}
