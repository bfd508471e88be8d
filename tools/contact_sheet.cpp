// Renders the scene from every camera position of a match, all images, and all windows as they appear on the
// screen, into PNG contact sheets. The output is reproducible.
//   contact_sheet DIRECTORY

#include "front/information_windows.h"
#include "match/frm_snapwedge.h"
#include "net/frm_new_net.h"
#include "platform/desktop/renderer/renderer.h"
#include "platform/headless/headless_machine.h"
#include "tools/built_game.h"
#include "tools/played_windows.h"

#include <QImage>
#include <QPainter>
#include <QProcess>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr QSize CanvasSize(417, 361);
constexpr int UpdatesToSettle = 60;                     // for the easing of the lens
constexpr int Gap = 6;                                  // pixels between images
constexpr int NameHeight = 18;                          // pixels for the name above each
constexpr const char *DenseWindows = "--dense-windows"; // option of the child process that renders these

using Images = std::vector<std::pair<std::string, QImage>>;

/// Images side by side, with their names.
void WriteSheet(Images images, int columns, const std::string &file) {
  QSize cell;
  for (auto &[name, image] : images) {
    image.setDevicePixelRatio(1.0); // one pixel of the image is one pixel of the sheet
    cell = cell.expandedTo(image.size());
  }
  cell.rheight() += NameHeight;
  const int rows = (static_cast<int>(images.size()) + columns - 1) / columns;
  QImage sheet(columns * (cell.width() + Gap) + Gap, rows * (cell.height() + Gap) + Gap,
               QImage::Format_RGB32);
  sheet.fill(QColor(40, 40, 44));
  QPainter painter(&sheet);
  painter.setPen(Qt::white);
  for (int i = 0; i < static_cast<int>(images.size()); ++i) {
    const auto &[name, image] = images[static_cast<std::size_t>(i)];
    const QPoint at(Gap + i % columns * (cell.width() + Gap), Gap + i / columns * (cell.height() + Gap));
    painter.drawText(at + QPoint(2, NameHeight - 5), QString::fromStdString(name));
    painter.drawImage(at + QPoint(0, NameHeight), image);
  }
  painter.end();
  if (!sheet.save(QString::fromStdString(file))) throw std::runtime_error("can't write " + file);
  std::printf("%s\n", file.c_str());
}

/// The scene of the play window in the situations of a match.
class Situations {
public:
  Situations() : machine_(GameDirectory()), program_(machine_), window_(machine_, program_) {
    program_.GameMode = "Human";
    program_.SoundOn = False;
    window_.SetUp();
  }

  void Render(const std::string &directory, int density, Quality quality) {
    Renderer renderer(quality);
    Images images;
    const auto take = [&](const std::string &name, const std::function<void()> &arrange) {
      Rest();
      arrange();
      window_.LookCam();
      for (int update = 0; update < UpdatesToSettle; ++update) {
        renderer.Draw(window_.RMCanvas1, CanvasSize * density);
        if (update == 0 && name == "kick") window_.MoveGoal();
      }
      images.emplace_back(name, renderer.Frame().copy());
    };
    take("rest", [] {});
    take("far aim", [&] {
      Put(3, -40, 2.3f);
      Camera(8, 12, -5);
      window_.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 0.2f);
    });
    take("side", [&] {
      Put(0, 20, 0.7f);
      window_.SideCam();
    });
    take("in flight", [&] {
      HideArrow();
      Put(-6, 30, 1.9f);
    });
    take("close-up on the bonus area", [&] {
      HideArrow();
      Put(3, -76, 0.6f);
      window_.CameraFrame->SetPosition(window_.PieceFrame, 0, 20, 20);
    });
    take("close-up at the far edge", [&] {
      HideArrow();
      Put(-20, -86, 3.6f);
      window_.CameraFrame->SetPosition(window_.PieceFrame, 0, 20, 20);
    });
    take("win camera, right", [&] {
      HideArrow();
      Put(10, -86, 2.2f);
      Camera(88, 30, -88);
    });
    take("win camera, left", [&] {
      HideArrow();
      Put(-30, -60, 2.2f);
      Camera(-88, 30, -88);
    });
    take("fall", [&] {
      HideArrow();
      Put(10, -90, 2.2f);
      window_.PieceFrame->SetPosition(window_.RMCanvas1.SceneFrame, 10, -40, -90);
      Camera(0, -10, 40);
    });
    take("fall beside the table", [&] {
      HideArrow();
      Put(91, 10, 1.2f);
      window_.PieceFrame->SetPosition(window_.RMCanvas1.SceneFrame, 91, -25, 10);
      Camera(130, -10, 120);
    });
    take("point-after", [&] {
      PutForKick();
      Camera(0, 15, 120);
    });
    take("kick", [&] {
      HideArrow();
      PutForKick();
      window_.PieceFrame->SetPosition(window_.RMCanvas1.SceneFrame, 0, 40, -20);
      window_.GoalFrame->SetPosition(window_.RMCanvas1.SceneFrame, 30, 20, -95);
      window_.SideCam();
    });
    take("orbit, low at a near corner", [&] { Camera(130, 5, 130); });
    take("orbit, high at the far side", [&] {
      Put(0, -20, 1.1f);
      Camera(-40, 30, -130);
    });
    take("without the stadium", [&] { window_.ToggleStadium(); });
    window_.ToggleStadium();
    WriteSheet(images, density == 1 ? 5 : 3,
               directory + (quality == Quality::Low ? "/scene-low@" : "/scene@") + std::to_string(density) +
                   "x.png");
  }

private:
  void Rest() {
    const auto &scene = window_.RMCanvas1.SceneFrame;
    Put(0, 85, 0);
    window_.GoalFrame->SetPosition(scene, 0, 20, -95);
    if (window_.ArrowFrame->Visuals().empty()) window_.ArrowFrame->AddVisual(window_.ArrowMesh);
    Camera(0, 10, 120);
  }

  void Put(float x, float z, float turn) {
    const auto &scene = window_.RMCanvas1.SceneFrame;
    for (const auto &frame : {window_.PieceFrame, window_.AimFrame}) {
      frame->SetOrientation(scene, 0, 0, 1, 0, 1, 0);
      frame->SetPosition(scene, x, 0, z);
    }
    window_.PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
    window_.LookCam();
  }

  void PutForKick() {
    const auto &scene = window_.RMCanvas1.SceneFrame;
    window_.PieceFrame->SetPosition(scene, 0, 4, 85);
    window_.AimFrame->SetPosition(scene, 0, 0, 87);
    window_.PieceFrame->SetOrientation(scene, 0, 0, 1, 1, 0, 0);
  }

  void Camera(float x, float y, float z) {
    window_.CameraFrame->SetPosition(window_.RMCanvas1.SceneFrame, x, y, z);
    window_.LookCam();
  }

  void HideArrow() {
    if (!window_.ArrowFrame->Visuals().empty()) window_.ArrowFrame->DeleteVisual(window_.ArrowMesh);
  }

  HeadlessMachine machine_;
  Program program_;
  frmSnapwedge window_;
};

void RenderPictures(const std::string &directory, bool dense) {
  const auto sheet = [&](const std::vector<std::string> &names, int columns, const std::string &file) {
    Images images;
    for (const std::string &name : names) {
      const auto path = GameDirectory() / "pictures" / (name + (dense ? "@2x.png" : ".png"));
      const QImage image(QString::fromStdString(path.string()));
      if (image.isNull()) throw std::runtime_error("can't read " + path.string());
      images.emplace_back(name, image);
    }
    WriteSheet(images, columns, directory + "/" + file + (dense ? "@2x.png" : "@1x.png"));
  };
  sheet({"Picture1", "Picture2", "Picture3", "Picture4", "Picture5", "Picture6", "Picture7"}, 4, "cards");
  if (!dense) sheet({"icon", "icon-48"}, 2, "icon");
}

/// The windows with their controls, at the screen's pixel density.
class Windows {
public:
  explicit Windows(BuiltGameMachine &machine) : machine_(machine), program_(machine) {
    program_.GameMode = "Human";
    program_.SoundOn = False;
  }

  void Render(const std::string &directory) {
    frmNewNet launch(machine_, program_);
    launch.lstConnections.List = {"This Computer", "Internet TCP/IP Connection"};
    launch.lstConnections.ListIndex = 1;
    Take(launch);
    TakeModal("frmControls", ShowControls);
    TakeModal("frmBackground", ShowBackground);
    TakeModal("frmText", ShowReadMe);
    RenderEndCards();
    const bool dense = images_.front().second.devicePixelRatio() > 1.0;
    const std::string ending = dense ? "@2x.png" : "@1x.png";
    WriteSheet(images_, 3, directory + "/windows" + ending);
    machine_.Hide(launch);
    WriteSheet(PlayWindows(machine_, GameDirectory()), 4, directory + "/play" + ending);
  }

private:
  void RenderEndCards() {
    frmSnapwedge play(machine_, program_);
    struct Row {
      const char *name;
      void (frmSnapwedge::*show)();
      std::int32_t home, away;
    };
    for (const Row &row :
         {Row{"frmHome", &frmSnapwedge::ShowHome, 13, 7}, Row{"frmAway", &frmSnapwedge::ShowAway, 0, 20},
          Row{"frmTie", &frmSnapwedge::ShowTie, 990, 990}}) {
      play.HomeScore = row.home;
      play.AwayScore = row.away;
      TakeModal(row.name, [&](Machine &) { (play.*row.show)(); });
    }
  }

  void Take(Window &window) {
    if (!window.Visible) machine_.Show(window);
    machine_.Pump();
    images_.emplace_back(window.Name, ShownWindow(window.Name)->grab().toImage());
  }

  void TakeModal(const std::string &name, const std::function<void(Machine &)> &show) {
    const auto poll = machine_.OnPump([&, taken = false]() mutable {
      QWidget *widget = ShownWindow(name);
      if (!widget || taken) return;
      taken = true;
      images_.emplace_back(name, widget->grab().toImage());
      widget->close();
    });
    show(machine_);
  }

  BuiltGameMachine &machine_;
  Program program_;
  Images images_;
};

} // namespace

int main(int argc, char **argv) {
  const bool denseWindows = argc == 3 && std::string(argv[2]) == DenseWindows;
  if (argc != 2 && !denseWindows) {
    std::fprintf(stderr, "usage: contact_sheet DIRECTORY\n");
    return 2;
  }
  try {
    const std::string directory = argv[1];
    std::filesystem::create_directories(directory);
    // A process has only one pixel density.
    qputenv("QT_SCALE_FACTOR", denseWindows ? "2" : "1");
    BuiltGameMachine machine(argc, argv);
    Windows(machine).Render(directory);
    if (denseWindows) return 0;
    Situations situations;
    for (const int density : {1, 2}) situations.Render(directory, density, Quality::Full);
    situations.Render(directory, 1, Quality::Low);
    for (const bool dense : {false, true}) RenderPictures(directory, dense);
    return QProcess::execute("/proc/self/exe", {QString::fromStdString(directory), DenseWindows});
  } catch (const std::exception &error) {
    std::fprintf(stderr, "contact_sheet: %s\n", error.what());
    return 1;
  }
}
