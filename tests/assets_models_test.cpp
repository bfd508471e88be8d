// The built models and textures in the scene: positions and extents that the rules rely on, surfaces without
// gaps, free lines of sight, textures without seams.

#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr float TableTop = -0.5f;
constexpr float HalfTable = 88.0f;
constexpr float KerbEdge = 86.7f; ///< where the turf ends
constexpr float BonusZ = -79.2f;
constexpr float BonusRadius = 8.0f;

struct Built {
  Game game;
  frmSnapwedge &window = game.window;
  Built() { game.SetUp(); }

  /// What a ray straight down hits under TableFrame, and where; empty for nothing.
  std::string Under(float x, float z, float *height = nullptr) {
    Ref<Direct3DRMPickArray> picked;
    window.TableFrame->RayPick(window.RMCanvas1.SceneFrame, {{0, -1, 0}, {x, 0, z}},
                               D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES, picked);
    if (picked->Hits.empty()) return "";
    D3DRMPICKDESC description;
    const auto visual = picked->GetPickVisual(0, description);
    if (height) *height = description.Position.y;
    return visual->GetName();
  }
};

/// The bounding box of a mesh, raised by `lift`.
struct Extent {
  Vector Low{1e9f, 1e9f, 1e9f}, High{-1e9f, -1e9f, -1e9f};
  Extent(const Direct3DRMMeshBuilder3 &mesh, float lift) {
    for (const Vector &v : mesh.Data().Positions) {
      Low = {std::min(Low.x, v.x), std::min(Low.y, v.y + lift), std::min(Low.z, v.z)};
      High = {std::max(High.x, v.x), std::max(High.y, v.y + lift), std::max(High.z, v.z)};
    }
  }
};

/// Inclusive range; equal bounds allow a tolerance of a thousandth.
struct Span {
  float low, high;
  bool Holds(float value) const { return value >= low - 0.001f && value <= high + 0.001f; }
};

TEST(AssetsModelsTest, EveryModelFillsItsPlace) {
  Built built;
  const auto &w = built.window;
  constexpr Span OnTable{TableTop + 0.01f, -0.05f};
  const struct {
    const char *name;
    const Ref<Direct3DRMMeshBuilder3> &mesh;
    float lift; ///< height of its frame
    Span lowX, highX, lowY, highY, lowZ, highZ;
  } rows[] = {
      {"piece",
       w.PieceMesh,
       0,
       {-5, -5},
       {5, 5},
       {-0.49f, -0.4f},
       {0.3f, 0.5f},
       {-2.5f, -2.5f},
       {2.5f, 2.5f}},
      {"table",
       w.TableMesh,
       TableTop,
       {-88, -88},
       {88, 88},
       {-4, -1},
       {TableTop, TableTop},
       {-88, -88},
       {88, 88}},
      {"bonus",
       w.BonusMesh,
       TableTop,
       {-8, -8},
       {8, 8},
       OnTable,
       OnTable,
       {-87.2f, -87.2f},
       {-71.2f, -71.2f}},
      {"extra", w.ExtraMesh, TableTop, {-8, -7}, {7, 8}, OnTable, OnTable, {-87.2f, -86}, {-72.4f, -71.2f}},
      {"aim", w.ArrowMesh, 0, {-11, -5}, {3, 7}, {-1, -0.43f}, {3, 5}, {-172.2f, -156.2f}, {20, 45}},
      {"goal", w.GoalMesh, 0, {-16, -14}, {14, 24}, {-40, -20.5f}, {28, 45}, {-8, -3}, {1, 9}},
      {"lines",
       w.LinesMesh,
       10,
       {-88.1f, -85},
       {85, 88.1f},
       {-3, -0.44f},
       {-0.48f, -0.43f},
       {-88, -86},
       {86, 88.1f}},
      {"stadium",
       w.StadiumMesh,
       10,
       {-400, -200},
       {200, 400},
       {-160, -148},
       {45, 75},
       {-400, -200},
       {200, 400}},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.name);
    const Extent extent(*row.mesh, row.lift);
    EXPECT_TRUE(row.lowX.Holds(extent.Low.x)) << extent.Low.x;
    EXPECT_TRUE(row.highX.Holds(extent.High.x)) << extent.High.x;
    EXPECT_TRUE(row.lowY.Holds(extent.Low.y)) << extent.Low.y;
    EXPECT_TRUE(row.highY.Holds(extent.High.y)) << extent.High.y;
    EXPECT_TRUE(row.lowZ.Holds(extent.Low.z)) << extent.Low.z;
    EXPECT_TRUE(row.highZ.Holds(extent.High.z)) << extent.High.z;
  }
}

TEST(AssetsModelsTest, AimReachesFromTheStartToTheTargetAndItsFingerLeavesThePieceInSight) {
  Built built;
  auto &w = built.window;
  const auto &scene = w.RMCanvas1.SceneFrame;
  constexpr float Flat = 0.15f; // above the centre of the piece
  int onTarget = 0, upright = 0;
  Vector at;
  w.ArrowFrame->GetPosition(scene, at);
  for (const Vector &v : w.ArrowMesh->Data().Positions) {
    onTarget += std::hypot(at.x + v.x, at.z + v.z - BonusZ) < BonusRadius;
    if (v.y < Flat) continue;
    ++upright;
    EXPECT_GT(v.z, 2.5f) << "nothing may stand in front of the near edge of the piece";
  }
  EXPECT_GT(onTarget, 0) << "the arrow points at the target at the start";
  EXPECT_GT(upright, 100) << "the finger";

  // The top of the piece must be visible in any orientation, also on its edge before a kick.
  struct Row {
    const char *name;
    Vector piece, up, aim, camera;
    float turn, most; ///< most: fraction of the top that may be hidden
  };
  for (const Row &row : {Row{"at the start", {0, 0, 85}, {0, 1, 0}, {0, 0, 85}, {0, 10, 120}, 0, 0.2f},
                         Row{"turned", {0, 0, 85}, {0, 1, 0}, {0, 0, 85}, {0, 10, 120}, 2.3f, 0.3f},
                         Row{"lowest camera", {0, 0, 20}, {0, 1, 0}, {0, 0, 20}, {0, 5, 60}, 0, 0.6f},
                         Row{"kick", {0, 4, 85}, {1, 0, 0}, {0, 0, 87}, {0, 15, 120}, 0, 0.05f}}) {
    SCOPED_TRACE(row.name);
    w.PieceFrame->SetOrientation(scene, 0, 0, 1, row.up.x, row.up.y, row.up.z);
    w.PieceFrame->SetPosition(scene, row.piece.x, row.piece.y, row.piece.z);
    w.PieceFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, row.turn);
    const Transform piece = w.PieceFrame->World();
    int hidden = 0, all = 0;
    for (const Vector &v : w.PieceMesh->Data().Positions) {
      if (v.y < 0.2f) continue;
      const auto part = [&](float Vector::*axis) {
        return piece.Origin.*axis + v.x * piece.Right.*axis + v.y * piece.Up.*axis +
               v.z * piece.Direction.*axis;
      };
      const Vector way{part(&Vector::x) - row.camera.x, part(&Vector::y) - row.camera.y,
                       part(&Vector::z) - row.camera.z};
      const Vector from{row.camera.x - row.aim.x, row.camera.y - row.aim.y, row.camera.z - row.aim.z};
      const auto distance = w.ArrowMesh->Intersect({way, from});
      hidden += distance && *distance < 1.0;
      ++all;
    }
    EXPECT_LT(static_cast<float>(hidden) / static_cast<float>(all), row.most);
  }
}

TEST(AssetsModelsTest, PieceHasItsCornersWhereTheRulesLook) {
  Built built;
  const auto &w = built.window;
  for (const auto &frame : {w.CornerA, w.CornerB, w.CornerC}) {
    Vector corner;
    frame->GetPosition(w.PieceFrame, corner);
    float nearest = std::numeric_limits<float>::max();
    for (const Vector &v : w.PieceMesh->Data().Positions)
      nearest = std::min(nearest, std::hypot(v.x - corner.x, v.y - corner.y, v.z - corner.z));
    EXPECT_LT(nearest, 0.001f) << corner.x << " " << corner.z;
  }
}

TEST(AssetsModelsTest, TableTopIsFlatWithoutGapsUpToItsEdges) {
  Built built;
  const auto expectTop = [&](float x, float z) {
    float height = 0;
    const std::string name = built.Under(x, z, &height);
    if (std::hypot(x, z - BonusZ) > BonusRadius + 0.01f) {
      EXPECT_EQ(name, "Table") << x << " " << z;
      EXPECT_FLOAT_EQ(height, TableTop) << x << " " << z;
    } else {
      EXPECT_NE(name, "") << x << " " << z;
    }
  };
  for (float along = -HalfTable; along <= HalfTable; along += 0.25f) {
    expectTop(0, along); // the path of a straight shot
    expectTop(along, along);
    for (const float edge : {-HalfTable + 0.002f, -KerbEdge, KerbEdge, HalfTable - 0.002f}) {
      expectTop(std::clamp(along, -87.998f, 87.998f), edge);
      expectTop(edge, std::clamp(along, -87.998f, 87.998f));
    }
    for (const float beyond : {-HalfTable - 0.002f, HalfTable + 0.002f}) {
      EXPECT_EQ(built.Under(along, beyond), "") << along;
      EXPECT_EQ(built.Under(beyond, along), "") << along;
    }
  }
}

TEST(AssetsModelsTest, BonusAreaIsAFullCircle) {
  Built built;
  for (int step = 0; step < 720; ++step) {
    const double angle = 2.0 * std::numbers::pi * step / 720.0;
    const auto under = [&](double radius) {
      float height = 0;
      const std::string name = built.Under(static_cast<float>(radius * std::sin(angle)),
                                           static_cast<float>(BonusZ + radius * std::cos(angle)), &height);
      EXPECT_LT(height, 0.0f);
      return name;
    };
    for (const double inside : {0.05, 2.0, 4.0, 5.5, 7.0, 7.6, 7.995})
      EXPECT_EQ(under(inside), "TableBon") << inside;
    EXPECT_EQ(under(8.005), "Table") << angle;
  }
}

TEST(AssetsModelsTest, FrontsOfFacesLieOnTheSideOfTheirNormals) {
  Built built;
  const auto &w = built.window;
  std::size_t faces = 0;
  for (const auto &mesh : {w.PieceMesh, w.TableMesh, w.BonusMesh, w.ExtraMesh, w.ArrowMesh, w.GoalMesh,
                           w.LinesMesh, w.StadiumMesh}) {
    const MeshData &data = mesh->Data();
    faces += data.Indices.size() / 3;
    int turned = 0;
    for (std::size_t i = 0; i < data.Indices.size(); i += 3) {
      const Vector &a = data.Positions[data.Indices[i]], &b = data.Positions[data.Indices[i + 1]],
                   &c = data.Positions[data.Indices[i + 2]];
      const double ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z, vx = c.x - a.x, vy = c.y - a.y,
                   vz = c.z - a.z;
      double along = 0;
      for (std::size_t corner = 0; corner < 3; ++corner) {
        const Vector &n = data.Normals[data.Indices[i + corner]];
        along += (uy * vz - uz * vy) * n.x + (uz * vx - ux * vz) * n.y + (ux * vy - uy * vx) * n.z;
      }
      turned += along < 0;
    }
    EXPECT_EQ(turned, 0) << "in a mesh of " << data.Indices.size() / 3;
  }
  EXPECT_LT(faces, 20000u) << "a computer without a graphics card has to draw them all";
}

TEST(AssetsModelsTest, NothingStandsBetweenACameraAndThePiece) {
  Built built;
  auto &stadium = *built.window.StadiumMesh;
  constexpr float Lift = 10; // of the stadium's frame
  const auto hidden = [&](const Vector &camera, const Vector &piece) {
    const auto distance = stadium.Intersect({{piece.x - camera.x, piece.y - camera.y, piece.z - camera.z},
                                             {camera.x, camera.y - Lift, camera.z}});
    return distance && *distance < 1.0;
  };
  std::vector<Vector> places = {{0, 10, 120}, {100, 20, 0}, {0, 15, 120}, {88, 30, -88}, {-88, 30, -88}};
  const std::size_t ofTheGame = places.size(); // the player's follow
  for (float x = -130; x <= 130; x += 65)
    for (float z = -130; z <= 130; z += 65)
      for (const float y : {5.0f, 30.0f}) places.push_back({x, y, z});
  int pylons = 0, looks = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const Vector &place = places[i];
    for (float x = -88; x <= 88; x += 22)
      for (float z = -95; z <= 88; z += 30.5f)
        for (const float y : {0.0f, 50.0f}) {
          ++looks;
          if (!hidden(place, {x, y, z})) continue;
          ++pylons;
          EXPECT_GE(i, ofTheGame) << place.x << " " << place.z;
          EXPECT_EQ(std::abs(x), 88) << "only the pylons at the corners may be in the way";
        }
    if (std::abs(place.x) == 88) continue; // the win camera never shows a fall
    // During a fall only the thin legs of the table may be in the way, briefly.
    int seen = 0, all = 0;
    for (float side = -88; side <= 88; side += 8)
      for (float y = -12; y >= -147; y -= 3)
        for (const Vector piece :
             {Vector{side, y, -91}, Vector{side, y, 91}, Vector{-91, y, side}, Vector{91, y, side}}) {
          ++all;
          seen += !hidden({place.x, -10, place.z}, piece);
        }
    EXPECT_GT(seen, all * 95 / 100) << place.x << " " << place.z;
  }
  EXPECT_LT(pylons, looks / 200) << "and rarely";
  // The sky covers everything.
  int open = 0;
  for (const Vector &v : stadium.Data().Positions)
    open += !built.window.SkyMesh->Intersect({{0, 1, 0}, {v.x, v.y + Lift - 80, v.z}}).has_value();
  EXPECT_EQ(open, 0);
}

TEST(AssetsModelsTest, PostsLeaveTheirGoalOpen) {
  Built built;
  bool left = false, right = false;
  for (const Vector &v : built.window.GoalMesh->Data().Positions) {
    if (v.y > 2 && v.y < 25) { // above are ribbons
      EXPECT_NEAR(std::abs(v.x), 14.0f, 1.0f);
    }
    left = left || (v.x < 0 && v.y > 30);
    right = right || (v.x > 0 && v.y > 30);
  }
  EXPECT_TRUE(left && right);
}

/// Mean difference of two neighbouring columns or rows.
double Difference(const ImageData &image, int a, int b, bool columns) {
  double sum = 0;
  const int count = columns ? image.Height : image.Width;
  for (int i = 0; i < count; ++i) {
    const auto at = [&](int line) {
      const int x = columns ? line : i, y = columns ? i : line;
      return static_cast<std::size_t>(y * image.Width + x) * 4;
    };
    for (std::size_t part = 0; part < 3; ++part)
      sum += std::abs(image.Pixels[at(a) + part] - image.Pixels[at(b) + part]);
  }
  return sum / count;
}

TEST(AssetsModelsTest, TexturesRepeatWithoutASeam) {
  for (const char *file : {"grass.dab", "sky.dab", "crowd2.dab", "loose.dab"}) {
    SCOPED_TRACE(file);
    const auto image = ReadImageFile(std::filesystem::path(SNAPWEDGE_GAME_DIR) / file);
    for (const bool columns : {true, false}) {
      const int size = columns ? image->Width : image->Height;
      EXPECT_TRUE(size >= 256 && size <= 1024 && (size & (size - 1)) == 0) << size;
      double largest = 0;
      for (int i = 0; i + 1 < size; ++i) largest = std::max(largest, Difference(*image, i, i + 1, columns));
      EXPECT_LE(Difference(*image, size - 1, 0, columns), largest * 1.1) << (columns ? "columns" : "rows");
    }
  }
}

} // namespace
