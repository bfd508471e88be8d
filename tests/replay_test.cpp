// The replay tool used interactively: commands in, lines of JSON out.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/// A running tool.
class Tool {
public:
  Tool() {
    std::array<std::array<int, 2>, 3> pipes;
    for (auto &ends : pipes) {
      if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    }
    child_ = fork();
    if (child_ == 0) {
      dup2(pipes[0][0], 0);
      dup2(pipes[1][1], 1);
      dup2(pipes[2][1], 2);
      for (const auto &ends : pipes) {
        close(ends[0]);
        close(ends[1]);
      }
      execl(SNAPWEDGE_REPLAY, "replay", nullptr);
      _exit(127);
    }
    close(pipes[0][0]);
    close(pipes[1][1]);
    close(pipes[2][1]);
    input_ = fdopen(pipes[0][1], "w");
    output_ = fdopen(pipes[1][0], "r");
    errors_ = fdopen(pipes[2][0], "r");
  }
  ~Tool() { End(); }
  Tool(const Tool &) = delete;
  Tool &operator=(const Tool &) = delete;

  void Say(const std::string &text) {
    std::fputs(text.c_str(), input_);
    std::fflush(input_);
  }

  /// The next line of output, without its line feed; empty at the end.
  std::string Hear() { return Line(output_); }

  struct Ending {
    int Status;
    std::vector<std::string> Lines;
    std::vector<std::string> Errors;
  };

  /// Ends the input. Returns the remaining output.
  Ending End() {
    if (child_ == 0) return {};
    std::fclose(input_);
    Ending ending{0, Lines(output_), Lines(errors_)};
    std::fclose(output_);
    std::fclose(errors_);
    waitpid(child_, &ending.Status, 0);
    child_ = 0;
    ending.Status = WIFEXITED(ending.Status) ? WEXITSTATUS(ending.Status) : -1;
    return ending;
  }

private:
  static std::string Line(FILE *from) {
    std::string line;
    for (int letter = std::fgetc(from); letter != EOF && letter != '\n'; letter = std::fgetc(from))
      line += static_cast<char>(letter);
    return line;
  }

  static std::vector<std::string> Lines(FILE *from) {
    std::vector<std::string> lines;
    for (std::string line = Line(from); !line.empty(); line = Line(from)) lines.push_back(line);
    return lines;
  }

  pid_t child_ = 0;
  FILE *input_ = nullptr;
  FILE *output_ = nullptr;
  FILE *errors_ = nullptr;
};

Tool::Ending Play(const std::string &input) {
  Tool tool;
  tool.Say(input);
  return tool.End();
}

bool Has(const std::string &line, const std::string &text) { return line.find(text) != std::string::npos; }

const std::string ToTheTouchdown = "flick 96 0\nflick 27 0\nflick 18 0\n";

TEST(ReplayTest, AWholeMatchIsToldFieldByField) {
  const auto told = Play("rounds 1\nprobe 0 -79\nprobe -87.5 3\nprobe 90 0.1\n" + ToTheTouchdown +
                         "kick 0 0.25 3\nframes 2\nkick 96 -0.25 273\nflick 0 0.5\nflick 120 -0.5");
  EXPECT_EQ(told.Status, 0);
  EXPECT_TRUE(told.Errors.empty());
  const std::vector<std::string> expected = {
      R"({"event":"probe","x":0,"z":-79,"surface":"TableBon"})",
      R"({"event":"probe","x":-87.5,"z":3,"surface":"Table"})",
      R"({"event":"probe","x":90,"z":0.1,"surface":null})",
      R"({"event":"flick","side":"A","force":96,"turn":0,"attempt":1,"steps":161,)"
      R"("rest":[0,0,-69.56034],"dir":[0,0,1],)"
      R"("corners":[[0.9246853,0,-64.04718],[-4.9653406,0,-72.12849],[2.0203278,0,-71.032845]],)"
      R"("result":"none","card":0,"home":0,"away":0,"next":"A","shots":2,"round":1})",
      R"({"event":"flick","side":"A","force":27,"turn":0,"attempt":2,"steps":45,)"
      R"("rest":[0,0,-81.98033],"dir":[0,0,1],)"
      R"("corners":[[-1.1257719,0,-87.45597],[5.0559754,0,-79.595566],[-1.9651018,0,-80.4349]],)"
      R"("result":"none","card":0,"home":0,"away":0,"next":"A","shots":1,"round":1})",
      R"({"event":"flick","side":"A","force":18,"turn":0,"attempt":3,"steps":30,)"
      R"("rest":[0,0,-87.560326],"dir":[0,0,1],)"
      R"("corners":[[5.194357,0,-89.626396],[-1.4637566,0,-82.1652],[-1.8653002,0,-89.22485]],)"
      R"("result":"touchdown","card":3,"home":6,"away":0,"next":"A","shots":3,"round":1})",
      R"({"event":"nokick"})",
      R"({"event":"kick","side":"A","force":96,"turn":-0.25,"steps":76,)"
      R"("end":[-8.66703e-07,53.29993,-95.40006],"posts_x":-2,"good":true,"card":1,"home":7,"away":0,)"
      R"("next":"B","round":1})",
      R"({"event":"flick","side":"B","force":0,"turn":0.5,"attempt":1,"steps":0,"rest":[0,0,85],)"
      R"("dir":[0.47942555,0,0.87758255],"corners":[[5,0,87.5],[-5,0,87.5],[0,0,82.5]],)"
      R"("result":"none","card":0,"home":7,"away":0,"next":"B","shots":2,"round":1})",
      R"({"event":"flick","side":"B","force":120,"turn":-0.5,"attempt":2,"steps":94,)"
      R"("rest":[-2.639707e-06,0,-88.14814],"dir":[1.5245368e-08,0,1],)"
      R"("corners":[[5.4408913,0,-89.431366],[-2.2379563,0,-83.02549],[-1.6014727,0,-90.06785]],)"
      R"("result":"fall","card":4,"home":7,"away":0,"next":"A","shots":3,"round":1})",
      R"({"event":"over","home":7,"away":0,"card":"home"})",
  };
  EXPECT_EQ(told.Lines, expected);
}

TEST(ReplayTest, TheComputersShotsComeByThemselvesAndTheMatchEndsWithoutAnotherCommand) {
  std::vector<std::string> told[3];
  for (int run = 0; run < 3; ++run) {
    Tool tool;
    tool.Say(run < 2 ? "mode Computer\nseed 3\n" : "mode Computer\nseed 4\n");
    const auto hear = [&] {
      told[run].push_back(tool.Hear());
      return told[run].back();
    };
    for (int round = 1; round <= 5; ++round) {
      SCOPED_TRACE(round);
      const std::string inRound = R"("round":)" + std::to_string(round);
      tool.Say("flick 120 0\n");
      ASSERT_TRUE(Has(hear(), R"("side":"A")"));
      ASSERT_TRUE(Has(told[run].back(), R"("attempt":1)"));
      ASSERT_TRUE(Has(told[run].back(), inRound + "}"));
      do ASSERT_TRUE(Has(hear(), inRound + R"(,"computer":true})")) << told[run].back();
      while (Has(told[run].back(), R"("next":"B")"));
    }
    EXPECT_TRUE(Has(hear(), R"({"event":"over","home":0,)"));
    EXPECT_EQ(tool.End().Status, 0);
  }
  EXPECT_EQ(told[0], told[1]);
  EXPECT_NE(told[0], told[2]);
}

TEST(ReplayTest, TheSkillScalesTheComputersErrors) {
  constexpr float Plan = 96; // force of the first attempt without its error
  const std::string named = R"("force":)";
  std::vector<float> errors;
  for (const std::string skill : {"Easy", "Medium", "Hard"}) {
    const auto told = Play("mode Computer\nseed 3\nskill " + skill + "\nflick 120 0\nflick 120 0\n");
    ASSERT_GE(told.Lines.size(), 2u);
    const std::string &first = told.Lines[1]; // of the computer
    errors.push_back(std::stof(first.substr(first.find(named) + named.size())) - Plan);
  }
  EXPECT_NE(errors[0], 0.0f);
  EXPECT_EQ(errors[0], 2 * errors[1]);
  EXPECT_EQ(errors[2], 1.25f * errors[1]);
}

TEST(ReplayTest, InputMayEndAnywhereAndNumbersMayBeExtreme) {
  struct Row {
    std::string input;
    std::size_t lines;
  };
  std::string ninetyNine = "rounds 99\nmode Human\n";
  for (int possession = 0; possession < 198; ++possession) ninetyNine += "flick 120 0\n";
  for (const Row &row : {Row{"", 0}, Row{"seed 4294967295\nmode Human", 0}, Row{"\n \r\nflick 8 0\r\n\n", 1},
                         Row{"flick 8 0", 1}, Row{ToTheTouchdown, 3}, Row{ToTheTouchdown + "frames 40\n", 3},
                         Row{ToTheTouchdown + "kick 1e-45 0 0\n", 4},
                         Row{"flick 1e-60 3e38\nprobe -3e38 1e-45\n", 2}, Row{ninetyNine, 199}}) {
    SCOPED_TRACE(row.input);
    const auto told = Play(row.input);
    EXPECT_EQ(told.Status, 0);
    EXPECT_EQ(told.Lines.size(), row.lines);
    EXPECT_TRUE(told.Errors.empty());
  }
}

TEST(ReplayTest, ALineThatCantBePlayedIsNamedAndNothingOfItIsPlayed) {
  struct Row {
    std::string input;
    int line;
    std::size_t lines;
  };
  const Row rows[] = {
      {"toss 3\n", 1, 0},
      {"rounds 0\n", 1, 0},
      {"rounds 100\n", 1, 0},
      {"mode Human\nrounds 5\n", 2, 0},
      {"mode human\n", 1, 0},
      {"skill Hardest\n", 1, 0},
      {"flick 8 0\nmode Human\n", 2, 1},
      {"flick 8 0\nskill Easy\n", 2, 1},
      {"probe 0 0\nseed 1\n", 2, 1},
      {"\nflick 8\n", 2, 0},
      {"flick 8 0 0\n", 1, 0},
      {"flick 120.01 0\n", 1, 0},
      {"flick -1 0\n", 1, 0},
      {"flick nan 0\n", 1, 0},
      {"flick 8 inf\n", 1, 0},
      {"probe 1e39 0\n", 1, 0},
      {"frames 1.5\n", 1, 0},
      {"flick 8x 0\n", 1, 0},
      {"flick 8 0\nkick 8 0 0\n", 2, 1},
      {ToTheTouchdown + "flick 8 0\nprobe 0 0\n", 4, 3},
      {ToTheTouchdown + "kick 8 0 -1\n", 4, 3},
      {ToTheTouchdown + "kick 8 0\n", 4, 3},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.input);
    const auto told = Play(row.input);
    EXPECT_EQ(told.Status, 2);
    EXPECT_EQ(told.Lines.size(), row.lines);
    ASSERT_EQ(told.Errors.size(), 1U);
    EXPECT_TRUE(Has(told.Errors[0], "line " + std::to_string(row.line) + ": ")) << told.Errors[0];
  }
}

} // namespace
