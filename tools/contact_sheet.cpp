// Renders the scene from every place where the camera stands in a match, and all windows' pictures, into
// sheets of PNG: the same on every day.
//   contact_sheet DIRECTORY

#include "match/frm_snapwedge.h"
#include "platform/desktop/renderer/renderer.h"
#include "platform/headless/headless_machine.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr QSize CanvasSize(417, 361);
constexpr int Gap = 6; // pixels between pictures

/// Pictures side by side, with their names.
void WriteSheet(const std::vector<std::pair<std::string, QImage>> &pictures, int columns,
                const std::string &file) {
  QSize cell;
  for (const auto &[name, picture] : pictures) cell = cell.expandedTo(picture.size());
  const int rows = (static_cast<int>(pictures.size()) + columns - 1) / columns;
  QImage sheet(columns * (cell.width() + Gap) + Gap, rows * (cell.height() + Gap) + Gap,
               QImage::Format_RGB32);
  sheet.fill(QColor(40, 40, 44));
  QPainter painter(&sheet);
  for (int i = 0; i < static_cast<int>(pictures.size()); ++i) {
    const auto &[name, picture] = pictures[static_cast<std::size_t>(i)];
    const QPoint at(Gap + i % columns * (cell.width() + Gap), Gap + i / columns * (cell.height() + Gap));
    painter.drawImage(at, picture);
    painter.setPen(Qt::black);
    painter.drawText(at + QPoint(7, 15), QString::fromStdString(name));
    painter.setPen(Qt::white);
    painter.drawText(at + QPoint(6, 14), QString::fromStdString(name));
  }
  painter.end();
  if (!sheet.save(QString::fromStdString(file))) throw std::runtime_error("can't write " + file);
  std::printf("%s\n", file.c_str());
}

/// The play window's scene, put into the situations of a match.
class Situations {
public:
  explicit Situations(const std::filesystem::path &game)
      : machine_(game), program_(machine_), window_(machine_, program_) {
    program_.GameMode = "Human";
    program_.SoundOn = False;
    window_.SetUp();
  }

  void Render(const std::string &directory, int density) {
    Renderer renderer(Quality::Full);
    std::vector<std::pair<std::string, QImage>> pictures;
    const auto take = [&](const std::string &name, const std::function<void()> &arrange) {
      Rest();
      arrange();
      window_.LookCam();
      renderer.Draw(window_.RMCanvas1, CanvasSize * density);
      pictures.emplace_back(name, renderer.Picture().copy());
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
    take("without the stadium", [&] { window_.ToggleStadium(); });
    window_.ToggleStadium();
    WriteSheet(pictures, density == 1 ? 4 : 3, directory + "/scene@" + std::to_string(density) + "x.png");
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

void RenderPictures(const std::filesystem::path &game, const std::string &directory, bool dense) {
  const auto sheet = [&](const std::vector<std::string> &names, int columns, const std::string &file) {
    std::vector<std::pair<std::string, QImage>> pictures;
    for (const std::string &name : names) {
      const auto path = game / "pictures" / (name + (dense ? "@2x.png" : ".png"));
      const QImage picture(QString::fromStdString(path.string()));
      if (picture.isNull()) throw std::runtime_error("can't read " + path.string());
      pictures.emplace_back(name, picture);
    }
    WriteSheet(pictures, columns, directory + "/" + file + (dense ? "@2x.png" : "@1x.png"));
  };
  sheet({"Picture1", "Picture2", "Picture3", "Picture4", "Picture5", "Picture6", "Picture7"}, 4, "cards");
  sheet({"frmNewNet", "frmSnapwedge", "frmControls", "frmBackground"}, 2, "windows");
  sheet({"frmHome", "frmAway", "frmTie"}, 3, "pages");
}

} // namespace

int main(int argc, char **argv) {
  QGuiApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: contact_sheet DIRECTORY\n");
    return 2;
  }
  try {
    const std::string directory = argv[1];
    std::filesystem::create_directories(directory);
    const auto game =
        std::filesystem::weakly_canonical("/proc/self/exe").parent_path().parent_path() / "game";
    Situations situations(game);
    for (const int density : {1, 2}) situations.Render(directory, density);
    for (const bool dense : {false, true}) RenderPictures(game, directory, dense);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "contact_sheet: %s\n", error.what());
    return 1;
  }
}
