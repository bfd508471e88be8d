// Every file of the game, damaged in every way: the error names the file and the reason before a match
// begins.

#include "front/check_files.h"
#include "match/frm_snapwedge.h"
#include "net/frm_new_net.h"
#include "platform/desktop/open_al_sound.h"
#include "platform/files.h"
#include "tests/desktop_kit.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

namespace {

namespace fs = std::filesystem;

/// The desktop machine with a copy of the game.
class CopyMachine : public DesktopMachine {
public:
  using DesktopMachine::DesktopMachine;
  fs::path AppPath() const override { return directory; }
  fs::path directory;

  static CopyMachine &Get() { return TheOnly<CopyMachine>(); }
};

std::string Content(const fs::path &file) {
  std::ostringstream all;
  all << std::ifstream(file, std::ios::binary).rdbuf();
  return all.str();
}

/// The files in a directory of the game with that ending.
std::vector<std::string> Names(const std::string &folder, const std::string &ending) {
  std::vector<std::string> names;
  for (const auto &entry : fs::directory_iterator(fs::path(SNAPWEDGE_GAME_DIR) / folder)) {
    const std::string name = entry.path().filename();
    if (name.ends_with(ending)) names.push_back(name);
  }
  std::ranges::sort(names);
  EXPECT_FALSE(names.empty()) << folder << ending;
  return names;
}

class FilesTest : public testing::Test {
protected:
  FilesTest() {
    CopyMachine::Get().directory = directory;
    fs::create_directories(directory / "pictures");
    for (const char *ending : {".dax", ".dab", ".daw", ".html"})
      for (const std::string &name : Names("", ending)) Restore(name);
    for (const char *ending : {".png", ".txt"})
      for (const std::string &name : Names("pictures", ending)) Restore("pictures/" + name);
  }
  ~FilesTest() override { fs::remove_all(directory); }

  void Restore(const std::string &file) {
    fs::remove_all(directory / file);
    fs::create_symlink(fs::path(SNAPWEDGE_GAME_DIR) / file, directory / file);
  }

  void Put(const std::string &file, const std::string &content) {
    fs::remove_all(directory / file);
    std::ofstream(directory / file, std::ios::binary) << content;
  }

  /// The checks before a match begins.
  static void Start() {
    CopyMachine &machine = CopyMachine::Get();
    Program program(machine);
    machine.CheckFiles(frmNewNet(machine, program));
    CheckInformationFiles(machine);
    CheckMatchFiles(machine, program);
  }

  template <class Error> void ExpectNamed(const std::string &file, const std::function<void()> &use) {
    const std::string name = fs::path(file).filename();
    try {
      use();
      ADD_FAILURE() << "it was accepted";
    } catch (const Error &error) {
      const std::string told = error.what();
      EXPECT_TRUE(told.starts_with('"' + name + "\": ")) << told;
      EXPECT_GT(told.size(), name.size() + 8) << told;
    }
  }

  /// The faults that any file can have.
  template <class Error> void Damage(const std::string &file, const std::function<void()> &use) {
    SCOPED_TRACE(file);
    const std::string whole = Content(directory / file);
    ASSERT_GT(whole.size(), 100U);
    std::string noise(whole.size(), '\0');
    std::mt19937 random(7);
    std::ranges::generate(noise, [&] { return static_cast<char>(random()); });
    const struct {
      const char *name;
      std::function<void()> make;
    } faults[] = {
        {"missing", [&] { fs::remove(directory / file); }},
        {"a directory",
         [&] {
           fs::remove(directory / file);
           fs::create_directory(directory / file);
         }},
        {"empty", [&] { Put(file, ""); }},
        {"cut in half", [&] { Put(file, whole.substr(0, whole.size() / 2)); }},
        {"without its last twentieth", [&] { Put(file, whole.substr(0, whole.size() - whole.size() / 20)); }},
        {"random bytes", [&] { Put(file, noise); }},
        {"random from its middle on", [&] { Put(file, whole.substr(0, whole.size() / 2) + noise); }},
        {"too large",
         [&] {
           Put(file, whole);
           fs::resize_file(directory / file, 2UL << 30);
         }},
    };
    for (const auto &fault : faults) {
      // Changed samples or pixels can't be detected.
      const bool samples = file.ends_with(".daw") || file.ends_with(".dab");
      if (samples && std::string(fault.name) == "random from its middle on") continue;
      SCOPED_TRACE(fault.name);
      fault.make();
      ExpectNamed<Error>(file, use);
    }
    Restore(file);
  }

  const fs::path directory = fs::temp_directory_path() / ("snapwedge_files_" + std::to_string(getpid()));
};

TEST_F(FilesTest, AnyFileOfTheSceneIsNamed) {
  ASSERT_NO_THROW(Start());
  for (const char *ending : {".dax", ".dab", ".html"})
    for (const std::string &name : Names("", ending)) Damage<FileError>(name, Start);
}

TEST_F(FilesTest, ADocumentThatCouldTakeTheToolkitMinutesIsNamed) {
  ASSERT_NO_THROW(Start());
  for (const std::string &content :
       {std::string("<table><tr><td>"), std::string("<UL><LI>"), std::string("<img src=\"/dev/zero\">"),
        std::string("<px>"), std::string(100000, 'x')}) {
    Put("readme.html", "<html><body>" + content + "</body></html>\n");
    ExpectNamed<FileError>("readme.html", Start);
  }
}

TEST_F(FilesTest, AnyPictureIsNamed) {
  ASSERT_NO_THROW(Start());
  for (const std::string &name : Names("pictures", ".png")) {
    if (name.find('@') != std::string::npos || name == "icon-48.png")
      continue; // images for other pixel densities and for the desktop
    Damage<FileError>("pictures/" + name, Start);
    Put("pictures/" + name, Content(directory / "pictures" / "icon-48.png"));
    ExpectNamed<FileError>(name, Start);
    Restore("pictures/" + name);
  }
}

TEST_F(FilesTest, AMissingInvalidOrTruncatedTextOfAPictureIsNamed) {
  ASSERT_NO_THROW(Start());
  for (const std::string &name : Names("pictures", ".txt")) {
    SCOPED_TRACE(name);
    fs::remove(directory / "pictures" / name);
    ExpectNamed<FileError>(name, Start);
    const std::string whole = Content(fs::path(SNAPWEDGE_GAME_DIR) / "pictures" / name);
    for (const std::string &content :
         {std::string("Turn\xff\xfeover\n"), std::string(), whole.substr(0, whole.size() / 3)}) {
      SCOPED_TRACE(content);
      Put("pictures/" + name, content);
      ExpectNamed<FileError>(name, Start);
    }
    Restore("pictures/" + name);
  }
}

TEST_F(FilesTest, AnEndCardThatGoesBadDuringAMatchTellsTheResultAllTheSame) {
  ASSERT_NO_THROW(Start());
  CopyMachine &machine = CopyMachine::Get();
  Program program(machine);
  frmSnapwedge play(machine, program);
  const struct {
    std::string file, result;
    void (frmSnapwedge::*show)();
  } cards[] = {{"frmHome.png", "Home Team Wins!!", &frmSnapwedge::ShowHome},
               {"frmAway.png", "Away Team Wins!!", &frmSnapwedge::ShowAway},
               {"frmTie.png", "It's All Tied Up!", &frmSnapwedge::ShowTie}};
  for (const auto &card : cards) {
    SCOPED_TRACE(card.file);
    Put("pictures/" + card.file, "damaged");
    try {
      (play.*card.show)();
      ADD_FAILURE() << "it was shown";
    } catch (const FileError &error) {
      EXPECT_EQ(error.what(), card.result + "\n\n\"" + card.file + "\": not a PNG file");
    }
  }
}

TEST_F(FilesTest, AnySoundIsNamed) {
  const auto sound = OpenDefaultSound();
  for (const std::string &name : Names("", ".daw")) {
    const auto load = [&] { sound->CreateSoundBufferFromFile(directory / name, {}, {}); };
    ASSERT_NO_THROW(load());
    Damage<SoundError>(name, load);
    constexpr std::size_t RateAt = 24; // bytes
    Put(name, Content(directory / name).replace(RateAt, 4, "\xff\xff\xff\x7f"));
    ExpectNamed<SoundError>(name, load); // and no buffer for a second of it
    Restore(name);
  }
}

TEST_F(FilesTest, AModelWithAWrongNumberIsNamed) {
  for (const std::string &name : Names("", ".dax")) {
    SCOPED_TRACE(name);
    const std::string whole = Content(directory / name);
    const std::size_t normals = whole.find("MeshNormals"), colors = whole.find("MeshVertexColors");
    ASSERT_NE(normals, std::string::npos);
    ASSERT_NE(colors, std::string::npos);
    const auto replace = [&](std::size_t from, const std::string &what, const std::string &with) {
      std::string changed = whole;
      changed.replace(whole.find(what, from), what.size(), with);
      return changed;
    };
    const auto insert = [&](std::size_t from, const std::string &before, const std::string &what) {
      return replace(from, before, before + what);
    };
    std::string beyond = whole;
    beyond.insert(whole.find('.', whole.find("{\n")), "9999999");
    const std::pair<const char *, std::string> faults[] = {
        {"index of a vertex", insert(0, "\n3;", "9999")},
        {"index of a normal", insert(normals, "\n3;", "9999")},
        {"negative index of a normal", insert(normals, "\n3;", "-")},
        {"index of a colour", insert(colors, ",\n", "9999")},
        {"number of vertices", insert(0, "{\n", "9")},
        {"number of vertices beyond memory", insert(0, "{\n", "999999999999")},
        {"number of normals", insert(normals, "{\n", "9")},
        {"number of colours", insert(colors, "{\n", "9")},
        {"corners of a face", replace(0, "\n3;", "\n33;")},
        {"corners of a face of normals", replace(normals, "\n3;", "\n33;")},
        {"place of a vertex", beyond},
    };
    for (const auto &[fault, content] : faults) {
      SCOPED_TRACE(fault);
      Put(name, content);
      ExpectNamed<FileError>(name, Start);
    }
    Restore(name);
  }
}

TEST_F(FilesTest, ABitmapOfAWrongSizeIsNamed) {
  for (const std::string &name : Names("", ".dab")) {
    SCOPED_TRACE(name);
    const std::string whole = Content(directory / name);
    const auto with = [&](std::size_t at, std::int32_t number) {
      std::string changed = whole;
      for (std::size_t i = 0; i < 4; ++i) changed[at + i] = static_cast<char>(number >> (8 * i));
      return changed;
    };
    constexpr std::size_t PixelsAt = 10, WidthAt = 18, HeightAt = 22, DepthAt = 28; // bytes
    const std::pair<const char *, std::string> faults[] = {
        {"no width", with(WidthAt, 0)},
        {"negative width", with(WidthAt, -16)},
        {"no height", with(HeightAt, 0)},
        {"wider than it is", with(WidthAt, 4000)},
        {"beyond memory", with(WidthAt, 1 << 30)},
        {"higher than it is", with(HeightAt, -4000)},
        {"8 bits", with(DepthAt, 8)},
        {"pixels behind its end", with(PixelsAt, 1 << 28)},
    };
    for (const auto &[fault, content] : faults) {
      SCOPED_TRACE(fault);
      Put(name, content);
      ExpectNamed<FileError>(name, Start);
    }
    Restore(name);
  }
}

} // namespace
