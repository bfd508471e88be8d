// Frames of the real scene: reproducible, still where nothing moves, and showing everything that a player
// needs.

#include "platform/desktop/renderer/edge_smoothing.h"
#include "platform/desktop/renderer/renderer.h"
#include "tests/desktop_kit.h"
#include "tests/game_kit.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <utility>

namespace {

constexpr QSize CanvasSize(417, 361);

/// The scene of the play window with a renderer.
struct RenderedGame {
  explicit RenderedGame(Quality quality) : renderer(quality) { game.SetUp(); }

  /// The frame once the lens has settled.
  QImage Draw(QSize size = CanvasSize) { return Settled(renderer, game.window.RMCanvas1, size); }

  static QImage Settled(Renderer &renderer, const RMCanvas &canvas, QSize size = CanvasSize) {
    while (renderer.Draw(canvas, size)) {
    }
    return renderer.Frame().copy();
  }

  QGuiApplication &application = TheOnly<QGuiApplication>();
  Game game;
  Renderer renderer;
};

int Differing(const QImage &a, const QImage &b, int tolerance = 0) {
  int count = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      const QColor p = a.pixelColor(x, y), q = b.pixelColor(x, y);
      const int most = std::max(
          {std::abs(p.red() - q.red()), std::abs(p.green() - q.green()), std::abs(p.blue() - q.blue())});
      if (most > tolerance) ++count;
    }
  }
  return count;
}

TEST(RendererTest, TheSameSceneGivesTheSameFrameToTheBit) {
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame one(quality), two(quality);
    EXPECT_EQ(Differing(one.Draw(), two.Draw()), 0);
  }
}

TEST(RendererTest, ABlackFirstFrameIsSmoothedToo) {
  constexpr QSize Size(9, 9);
  EdgeSmoothing smoothing(Size);
  smoothing.Drawn().fill(Qt::black);
  QImage frame(Size, QImage::Format_RGB32);
  frame.fill(Qt::red);
  EXPECT_TRUE(smoothing.Update(frame));
  EXPECT_EQ(frame.pixelColor(4, 4), QColor(Qt::black));
}

/// The mean colour of a part of an image.
QColor MeanColor(const QImage &image, const QRect &part) {
  int red = 0, green = 0, blue = 0;
  for (int y = part.top(); y <= part.bottom(); ++y) {
    for (int x = part.left(); x <= part.right(); ++x) {
      const QColor color = image.pixelColor(x, y);
      red += color.red();
      green += color.green();
      blue += color.blue();
    }
  }
  const int count = part.width() * part.height();
  return {red / count, green / count, blue / count};
}

TEST(RendererTest, TheSceneHasItsColours) {
  struct Row {
    const char *name;
    QRect part; ///< pixels
    QColor color;
  };
  const Row rows[] = {
      {"sky at dusk", {30, 2, 60, 10}, {185, 158, 213}},
      {"turf", {300, 228, 80, 25}, {121, 194, 79}},
      {"banner", {10, 100, 40, 12}, {50, 47, 88}},
      {"arrow", {200, 215, 16, 8}, {243, 238, 59}},
      {"bar of the posts", {185, 92, 40, 2}, {229, 220, 98}},
      {"paper of the piece", {165, 266, 25, 5}, {217, 211, 217}},
      {"finger", {190, 300, 30, 40}, {255, 196, 149}},
      {"wood of the table", {20, 297, 90, 10}, {141, 102, 66}},
  };
  constexpr int Near = 20; // of 255, in each channel
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame rendered(quality);
    const QImage drawn = rendered.Draw();
    for (const Row &row : rows) {
      const QColor mean = MeanColor(drawn, row.part);
      EXPECT_NEAR(mean.red(), row.color.red(), Near) << row.name;
      EXPECT_NEAR(mean.green(), row.color.green(), Near) << row.name;
      EXPECT_NEAR(mean.blue(), row.color.blue(), Near) << row.name;
    }
  }
}

TEST(RendererTest, AFrameDrawnInPartsEqualsOneDrawnWhole) {
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame rendered(quality);
    auto &window = rendered.game.window;
    const auto &scene = window.RMCanvas1.SceneFrame;
    Renderer afresh(quality);
    std::mt19937 random(3);
    const auto any = [&](float low, float high) {
      return std::uniform_real_distribution<float>(low, high)(random);
    };
    for (int i = 0; i < 24; ++i) {
      SCOPED_TRACE(i);
      window.Wind();
      switch (random() % 8) {
      case 0:
        window.PieceFrame->SetPosition(scene, any(-80, 80), any(0, 20), any(-80, 80));
        break;
      case 1:
        window.GoalFrame->SetPosition(scene, any(-88, 88), 20, -95);
        break;
      case 2:
        window.CameraFrame->SetPosition(scene, any(-130, 130), any(-10, 30), any(-130, 130));
        window.LookCam();
        break;
      case 3:
        window.ToggleStadium();
        break;
      case 4:
        window.PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, any(-1, 1));
        break;
      default:
        window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, any(-0.2f, 0.2f));
      }
      const QImage parts = rendered.Draw();
      RenderedGame::Settled(afresh, window.RMCanvas1);
      afresh.Draw(window.RMCanvas1, CanvasSize * 2); // another size, so that nothing is reused
      afresh.Draw(window.RMCanvas1, CanvasSize);
      ASSERT_EQ(Differing(parts, afresh.Frame()), 0);
    }
  }
}

TEST(RendererTest, AFrameThatGrowsIsAsSharpAsOneThatWasAlwaysLarge) {
  RenderedGame grown(Quality::Low), large(Quality::Low);
  for (RenderedGame *rendered : {&grown, &large}) {
    auto &window = rendered->game.window; // beside the table, before the stands
    window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 91, -25, 10);
    window.CameraFrame->SetPosition(window.RMCanvas1.SceneFrame, 130, -10, 120);
    window.LookCam();
  }
  const QImage small = grown.Draw();
  const QImage whole = grown.Draw(2 * CanvasSize);
  EXPECT_EQ(Differing(whole, large.Draw(2 * CanvasSize)), 0);
  EXPECT_EQ(Differing(small, grown.Draw()), 0) << "as after a move to another screen and back";
}

TEST(RendererTest, NothingIsDrawnAgainThatDoesNotShow) {
  RenderedGame rendered(Quality::Low);
  rendered.Draw();
  auto &window = rendered.game.window;
  EXPECT_FALSE(rendered.renderer.Draw(window.RMCanvas1, CanvasSize));
  window.LookCam();
  window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 0, 0, 85);
  EXPECT_FALSE(rendered.renderer.Draw(window.RMCanvas1, CanvasSize))
      << "a move to the same position changes nothing";
  window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 0.01f);
  EXPECT_TRUE(rendered.renderer.Draw(window.RMCanvas1, CanvasSize)) << "the arrow has turned";
  EXPECT_TRUE(rendered.renderer.Draw(window.RMCanvas1, CanvasSize * 2));
}

TEST(RendererTest, ATurnedPieceChangesTheFrameWhereItIsAndNowhereElse) {
  RenderedGame rendered(Quality::Full);
  auto &window = rendered.game.window;
  const QImage before = rendered.Draw();
  window.PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 0.5f);
  const QImage after = rendered.Draw();
  EXPECT_GT(Differing(before, after), 100);
  const QRect sky(0, 0, CanvasSize.width(), CanvasSize.height() / 4);
  EXPECT_EQ(Differing(before.copy(sky), after.copy(sky)), 0);
}

TEST(RendererTest, PieceArrowTableAndPostsStandOutFromTheRest) {
  // The number of pixels that change when an object is removed.
  RenderedGame rendered(Quality::Low);
  auto &window = rendered.game.window;
  const QImage whole = rendered.Draw();
  struct Row {
    const char *name;
    Ref<Direct3DRMFrame3> frame;
    Ref<Direct3DRMMeshBuilder3> mesh;
    int pixels;
  };
  for (const Row &row : {Row{"piece", window.PieceFrame, window.PieceMesh, 400},
                         Row{"arrow", window.ArrowFrame, window.ArrowMesh, 300},
                         Row{"posts", window.GoalFrame, window.GoalMesh, 200},
                         Row{"table", window.TableFrame, window.TableMesh, 15000},
                         Row{"stadium", window.StadiumFrame, window.StadiumMesh, 15000}}) {
    SCOPED_TRACE(row.name);
    row.frame->DeleteVisual(row.mesh);
    EXPECT_GT(Differing(whole, rendered.Draw(), 40), row.pixels);
    row.frame->AddVisual(row.mesh);
  }
}

TEST(RendererTest, NinePixelsOfMouseAreSeenBehindThePieceAndFarAhead) {
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame rendered(quality);
    auto &window = rendered.game.window;
    const QImage before = rendered.Draw();
    window.PieceFrame->DeleteVisual(window.PieceMesh);
    const QImage without = rendered.Draw();
    window.PieceFrame->AddVisual(window.PieceMesh);
    int top = CanvasSize.height(), bottom = 0; // of the piece
    for (int y = 0; y < CanvasSize.height(); ++y) {
      const QRect row(0, y, CanvasSize.width(), 1);
      if (Differing(before.copy(row), without.copy(row), 40) == 0) continue;
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 9.0f / 300.0f);
    const QImage after = rendered.Draw();
    const QRect ahead(0, 0, CanvasSize.width(), top), behind(0, bottom + 1, CanvasSize.width(), 400);
    const auto moved = [&](const QRect &part) {
      const QRect shown = part.intersected(before.rect());
      return Differing(before.copy(shown), after.copy(shown), 40);
    };
    EXPECT_GT(moved(behind), 100) << "the finger swings";
    EXPECT_GT(moved(ahead), 200) << "the arrow and the dots swing";
    EXPECT_GT(moved(ahead.adjusted(0, 0, 0, -55)), 20) << "the far dots swing";
  }
}

TEST(RendererTest, AFarPieceInTheSkyHasAnUnbrokenOutline) {
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame rendered(quality);
    auto &window = rendered.game.window;
    window.ToggleStadium();
    window.ArrowFrame->DeleteVisual(window.ArrowMesh);
    window.GoalFrame->DeleteVisual(window.GoalMesh);
    window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 0, 60, -80);
    window.PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 1, 0, 0, 1.0f);
    window.SideCam();
    window.LookCam();
    const QImage frame = rendered.Draw();
    // Nothing else in the upper third is darker than the sky.
    int rows = 0, outlined = 0;
    for (int y = 0; y < CanvasSize.height() / 3; ++y) {
      std::vector<int> lightness;
      for (int x = 0; x < CanvasSize.width(); ++x) {
        if (const int here = frame.pixelColor(x, y).lightness(); here < 150) lightness.push_back(here);
      }
      if (lightness.size() < 4) continue;
      ++rows;
      constexpr int Dark = 115;
      // One of the two may be blended with the sky.
      const auto isDark = [](auto first) { return std::min(first[0], first[1]) < Dark; };
      outlined += isDark(lightness.begin()) && isDark(lightness.rbegin());
    }
    EXPECT_GE(outlined, rows * 3 / 4);
    EXPECT_GT(outlined, 15);
  }
}

TEST(RendererTest, ThePieceCastsItsShadowWhileSomebodyAims) {
  RenderedGame rendered(Quality::Low);
  auto &window = rendered.game.window;
  window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 0, 3, 20);
  window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, 0.785f); // widens its bounding box, not the aim
  // The view must not change when the piece is removed.
  window.CameraFrame->LookAt(window.AimFrame, window.RMCanvas1.SceneFrame, D3DRMCONSTRAIN_Z);
  const auto pieceAndShadow = [&] {
    const QImage with = rendered.Draw();
    window.PieceFrame->DeleteVisual(window.PieceMesh);
    const QImage without = rendered.Draw();
    window.PieceFrame->AddVisual(window.PieceMesh);
    return Differing(with, without, 12);
  };
  const int aiming = pieceAndShadow();
  window.ArrowFrame->DeleteVisual(window.ArrowMesh);
  EXPECT_NEAR(aiming, pieceAndShadow(), 3);
}

TEST(RendererTest, AShadowDarkensTheTurf) {
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame rendered(quality);
    auto &window = rendered.game.window;
    window.PieceFrame->SetPosition(window.RMCanvas1.SceneFrame, 0, 3, 20);
    window.CameraFrame->LookAt(window.AimFrame, window.RMCanvas1.SceneFrame, D3DRMCONSTRAIN_Z);
    const QImage with = rendered.Draw();
    window.PieceFrame->DeleteVisual(window.PieceMesh);
    const QImage without = rendered.Draw();
    const auto isTurf = [](const QColor &color) {
      return color.green() > color.red() + 20 && color.green() > color.blue() + 20;
    };
    int shaded = 0;
    for (int y = 0; y < with.height(); ++y) {
      for (int x = 0; x < with.width(); ++x) {
        const QColor p = with.pixelColor(x, y), q = without.pixelColor(x, y);
        shaded += isTurf(p) && isTurf(q) && 10 * p.green() < 8 * q.green();
      }
    }
    EXPECT_GT(shaded, 50);
  }
}

/// The painted lines that each column of a frame crosses, from top to bottom.
std::vector<int> LinesInColumns(const QImage &with, const QImage &without, int first, int last) {
  constexpr int Visible = 12; // sum of all channels
  std::vector<int> lines;
  for (int x = first; x < last; ++x) {
    bool painted = false;
    lines.push_back(0);
    for (int y = 0; y < CanvasSize.height(); ++y) {
      const QColor p = with.pixelColor(x, y), q = without.pixelColor(x, y);
      const bool was = std::exchange(painted, std::abs(p.red() - q.red()) + std::abs(p.green() - q.green()) +
                                                      std::abs(p.blue() - q.blue()) >
                                                  Visible);
      if (painted && !was) ++lines.back();
    }
  }
  return lines;
}

TEST(RendererTest, LinesFarDownTheFieldDoNotBreak) {
  constexpr int AfterHashMarks = 156,
                BeforeTarget = 185; // columns that only the lines across the field cross
  constexpr int LinesAcross = 10;
  for (const Quality quality : {Quality::Full, Quality::Low}) {
    RenderedGame rendered(quality);
    auto &window = rendered.game.window;
    window.ArrowFrame->DeleteVisual(window.ArrowMesh);
    const QImage with = rendered.Draw();
    window.StadiumFrame->DeleteVisual(window.LinesMesh);
    for (const int lines : LinesInColumns(with, rendered.Draw(), AfterHashMarks, BeforeTarget))
      EXPECT_GE(lines, LinesAcross);
  }
}

/// Number of pixels that flicker while the camera moves slowly past the piece. Z-fighting changes a pixel
/// back and forth; a passing surface changes it once.
int Flips(RenderedGame &rendered, const Vector &from) {
  auto &window = rendered.game.window;
  constexpr int Frames = 60;
  constexpr int Jump = 70, Back = 16; // levels of grey
  QImage last[3];
  int flips = 0;
  for (int i = 0; i < Frames; ++i) {
    const float way = 0.02f * static_cast<float>(i);
    window.CameraFrame->SetPosition(window.RMCanvas1.SceneFrame, from.x + way, from.y, from.z - way);
    window.LookCam();
    last[0] = last[1];
    last[1] = last[2];
    rendered.renderer.Draw(window.RMCanvas1, CanvasSize);
    last[2] = rendered.renderer.Frame().copy();
    if (last[0].isNull()) continue;
    for (int y = 0; y < CanvasSize.height(); ++y) {
      const auto line = [&](int image) {
        return reinterpret_cast<const QRgb *>(last[image].constScanLine(y));
      };
      const QRgb *first = line(0), *second = line(1), *third = line(2);
      for (int x = 0; x < CanvasSize.width(); ++x) {
        const int a = qGray(first[x]), b = qGray(second[x]), c = qGray(third[x]);
        flips += std::abs(b - a) > Jump && std::abs(b - c) > Jump && std::abs(a - c) < Back;
      }
    }
  }
  return flips;
}

struct SlowMove {
  const char *name;
  Vector camera;
  float pieceX, pieceZ;
};

void Arrange(RenderedGame &rendered, const SlowMove &move) {
  auto &window = rendered.game.window;
  for (const auto &frame : {window.PieceFrame, window.AimFrame})
    frame->SetPosition(window.RMCanvas1.SceneFrame, move.pieceX, 0, move.pieceZ);
}

TEST(RendererTest, ASlowMoveOfTheCameraShowsNoFlicker) {
  RenderedGame rendered(Quality::Full);
  constexpr int Most = 100; // of nine million pixels
  for (const SlowMove &move :
       {SlowMove{"rest", {0, 10, 120}, 0, 85}, SlowMove{"side, across the arrow", {100, 20, 0}, 0, 20},
        SlowMove{"low over the far grass", {-130, 5, 130}, 0, -60},
        SlowMove{"close over the target", {3, 20, -58}, 2, -78},
        SlowMove{"from the far corner", {88, 30, -88}, 10, -86}}) {
    SCOPED_TRACE(move.name);
    Arrange(rendered, move);
    EXPECT_LT(Flips(rendered, move.camera), Most);
  }
}

TEST(RendererTest, FlickerOfTwoSurfacesInOnePlaneWouldBeSeen) {
  RenderedGame rendered(Quality::Full);
  auto &window = rendered.game.window;
  constexpr float AboveTable = 0.06f; // of the lines
  window.LinesMesh->Translate(0, -AboveTable, 0);
  const SlowMove move{"from the far corner", {88, 30, -88}, 10, -86};
  Arrange(rendered, move);
  EXPECT_GT(Flips(rendered, move.camera), 10000);
}

TEST(RendererTest, TheDriverCachesNothingOnAFullDisk) {
  TheOnly<QGuiApplication>();
  const struct {
    const char *variable, *cache, *disabled;
  } rows[] = {{"XDG_CACHE_HOME", "/tmp/not/there", ""},
              {"XDG_CACHE_HOME", "/proc", "true"}, // has no space at all
              {"MESA_SHADER_CACHE_DIR", "/proc", "true"}};
  for (const auto &row : rows) {
    const QByteArray before = qgetenv(row.variable);
    qunsetenv("MESA_SHADER_CACHE_DISABLE");
    qputenv(row.variable, row.cache);
    const Renderer renderer(Quality::Low);
    EXPECT_EQ(qgetenv("MESA_SHADER_CACHE_DISABLE"), row.disabled) << row.variable << " " << row.cache;
    before.isNull() ? qunsetenv(row.variable) : qputenv(row.variable, before);
  }
  qunsetenv("MESA_SHADER_CACHE_DISABLE");
}

} // namespace
