// The scene graph: positions and rotations in various frames, LookAt, continuous rotation, picking, wraps,
// and unreadable files.

#include "platform/headless/headless_machine.h"
#include "scene/graph/rm_canvas.h"
#include "scene/graph/trigonometry.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr float Near = 2e-5f;
constexpr float QuarterTurn = std::numbers::pi_v<float> / 2;

void ExpectNear(const Vector &a, const Vector &b, float tolerance = Near) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

float Dot(const Vector &a, const Vector &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

class GraphTest : public ::testing::Test {
protected:
  GraphTest() : directory(fs::path(testing::TempDir()) / ("graph" + std::to_string(getpid()))) {
    fs::create_directories(directory);
    canvas.Start();
    scene = canvas.SceneFrame;
  }
  ~GraphTest() override { fs::remove_all(directory); }

  Ref<Direct3DRMFrame3> Frame(const Ref<Direct3DRMFrame3> &parent, const Vector &place, float turn) {
    auto frame = canvas.RootObject->CreateFrame(parent);
    frame->SetPosition(parent, place.x, place.y, place.z);
    frame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
    return frame;
  }
  Vector Place(const Ref<Direct3DRMFrame3> &frame, const Ref<Direct3DRMFrame3> &ref) {
    Vector place;
    frame->GetPosition(ref, place);
    return place;
  }
  Vector Direction(const Ref<Direct3DRMFrame3> &frame, const Ref<Direct3DRMFrame3> &ref) {
    Vector direction, up;
    frame->GetOrientation(ref, direction, up);
    return direction;
  }
  void ExpectUpright(const Ref<Direct3DRMFrame3> &frame) {
    const Transform world = frame->World();
    for (const Vector &axis : {world.Right, world.Up, world.Direction})
      EXPECT_NEAR(Dot(axis, axis), 1.0f, 1e-6f);
    EXPECT_NEAR(Dot(world.Right, world.Up), 0.0f, 1e-6f);
    EXPECT_NEAR(Dot(world.Up, world.Direction), 0.0f, 1e-6f);
    EXPECT_NEAR(Dot(world.Direction, world.Right), 0.0f, 1e-6f);
  }
  float Any(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }

  /// A height field of `side` times `side` unit squares around the origin, two faces each.
  Ref<Direct3DRMMeshBuilder3> Sheet(int side, const std::string &name,
                                    const std::function<float(int, int)> &height) {
    std::ostringstream file;
    file << "xof 0303txt 0032\nMesh {\n" << (side + 1) * (side + 1) << ";\n" << std::fixed;
    for (int z = 0; z <= side; ++z) {
      for (int x = 0; x <= side; ++x) {
        file << static_cast<float>(x) - 0.5f * static_cast<float>(side) << ';' << height(x, z) << ';'
             << static_cast<float>(z) - 0.5f * static_cast<float>(side) << ';'
             << (x == side && z == side ? ";\n" : ",\n");
      }
    }
    file << 2 * side * side << ";\n";
    for (int z = 0; z < side; ++z) {
      for (int x = 0; x < side; ++x) {
        const int a = z * (side + 1) + x, b = a + side + 1;
        file << "3;" << a << ',' << b << ',' << b + 1 << ";,\n3;" << a << ',' << b + 1 << ',' << a + 1
             << (x == side - 1 && z == side - 1 ? ";;\n" : ";,\n");
      }
    }
    file << "}\n";
    const fs::path path = directory / (name + ".dax");
    std::ofstream(path) << file.str();
    auto mesh = canvas.RootObject->CreateMeshBuilder();
    mesh->LoadFromFile(path);
    mesh->SetName(name);
    return mesh;
  }

  /// Name of the mesh under a point of the scene, "" for none.
  std::string Under(const Ref<Direct3DRMFrame3> &root, const Vector &from, Vector *hit = nullptr) {
    return Along(root, {{0, -1, 0}, from}, hit);
  }
  std::string Along(const Ref<Direct3DRMFrame3> &root, const D3DRMRAY &ray, Vector *hit = nullptr) {
    Ref<Direct3DRMPickArray> picked;
    root->RayPick(scene, ray, D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES, picked);
    D3DRMPICKDESC description;
    try {
      const std::string name = picked->GetPickVisual(0, description)->GetName();
      if (hit) *hit = description.Position;
      return name;
    } catch (const SceneError &) {
      return "";
    }
  }

  HeadlessMachine machine{SNAPWEDGE_GAME_DIR};
  RMCanvas canvas{machine};
  Ref<Direct3DRMFrame3> scene;
  fs::path directory;
  std::mt19937 random{7};
};

TEST_F(GraphTest, SineAndCosineAreRightToTheLastPlaces) {
  for (double angle = -700.0; angle < 700.0; angle += 0.137) {
    const auto [sine, cosine] = graph::SineAndCosine(angle);
    ASSERT_NEAR(sine, std::sin(angle), 1e-15) << angle;
    ASSERT_NEAR(cosine, std::cos(angle), 1e-15) << angle;
  }
}

TEST_F(GraphTest, AStepInTheFramesOwnAxesFollowsItsTurn) {
  const auto frame = Frame(scene, {1, 2, 3}, QuarterTurn); // +z has turned toward +x
  frame->SetPosition(frame, 0, 0, 5);
  ExpectNear(Place(frame, scene), {6, 2, 3});
  frame->SetPosition(frame, 0, 0, -5);
  frame->SetPosition(frame, 4, 1, 0);
  ExpectNear(Place(frame, scene), {1, 3, -1});
  ExpectNear(Place(frame, frame), {0, 0, 0});
  // Under a turned parent too.
  const auto child = Frame(frame, {0, 0, 2}, QuarterTurn);
  child->SetPosition(child, 0, 0, 3);
  ExpectNear(Place(child, scene), {3, 3, -4});
}

TEST_F(GraphTest, AChildPutByWayOfAnotherFrameStaysWithItsParent) {
  const auto parent = Frame(scene, {10, -3, 4}, 0.7f);
  const auto child = Frame(parent, {1, 1, 1}, -0.2f);
  const Vector facing = Direction(child, scene);
  child->SetPosition(scene, 1, 2, 3);
  ExpectNear(Place(child, scene), {1, 2, 3});
  ExpectNear(Direction(child, scene), facing);
  parent->SetPosition(scene, 15, -3, 4);
  ExpectNear(Place(child, scene), {6, 2, 3});
}

TEST_F(GraphTest, AFrameThatOutlivesItsParentStandsForItself) {
  auto other = std::make_unique<RMCanvas>(machine);
  other->Start();
  const auto child = other->RootObject->CreateFrame(other->SceneFrame);
  child->SetPosition(other->SceneFrame, 1, 2, 3);
  other.reset();
  EXPECT_EQ(child->World().Origin, (Vector{1, 2, 3}));
}

TEST_F(GraphTest, APlaceReadInATurnedFrameGoesWithIt) {
  const auto ref = Frame(Frame(scene, {5, 0, -2}, 1.1f), {0, 3, 0}, -2.3f);
  const auto frame = Frame(Frame(scene, {-1, 2, 8}, 0.4f), {2, 2, 2}, 0.9f);
  const Vector before = Place(frame, ref);
  ref->AddRotation(D3DRMCOMBINE_BEFORE, 1, 2, 3, 0.8f);
  ref->SetPosition(scene, 40, 50, 60);
  frame->SetPosition(ref, before.x, before.y, before.z);
  ExpectNear(Place(frame, ref), before);
  Vector direction, up;
  frame->GetOrientation(ref, direction, up);
  frame->SetOrientation(ref, direction.x, direction.y, direction.z, up.x, up.y, up.z);
  ExpectNear(Direction(frame, ref), direction, 1e-6f);
}

TEST_F(GraphTest, AShotsOrientationSurvivesItsJourneyToTheBit) {
  const auto shooter = Frame(scene, {}, 0), replay = Frame(scene, {}, 0);
  for (int i = 0; i < 2000; ++i) {
    shooter->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, Any(-0.3f, 0.3f));
    Vector direction, up, again, upAgain;
    shooter->GetOrientation(scene, direction, up);
    replay->SetOrientation(scene, direction.x, direction.y, direction.z, up.x, up.y, up.z);
    replay->GetOrientation(scene, again, upAgain);
    ASSERT_EQ(again, direction);
    ASSERT_EQ(upAgain, up);
  }
}

TEST_F(GraphTest, ARotationIsAboutTheFramesOwnAxisAndNeverBendsIt) {
  const auto frame = Frame(scene, {1, 2, 3}, 0);
  frame->AddRotation(D3DRMCOMBINE_BEFORE, 1, 0, 0, QuarterTurn); // now its y points along +z, its z along -y
  ExpectNear(Direction(frame, scene), {0, -1, 0});
  frame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, QuarterTurn);
  ExpectNear(Direction(frame, scene), {1, 0, 0});
  frame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 0, 1, QuarterTurn); // its x turns toward its y
  ExpectNear(frame->World().Right, {0, 0, 1});
  ExpectNear(Place(frame, scene), {1, 2, 3}, 0);
  for (int i = 0; i < 20000; ++i)
    frame->AddRotation(D3DRMCOMBINE_BEFORE, Any(-1, 1), Any(-1, 1), 1, Any(-1, 1));
  ExpectUpright(frame);
}

TEST_F(GraphTest, SteadyTurningIsAboutAnAxisOfTheReferenceUntilItIsStopped) {
  const auto ref = Frame(scene, {9, 9, 9}, 0.3f);
  ref->AddRotation(D3DRMCOMBINE_BEFORE, 1, 0, 0, -QuarterTurn); // its z axis is the scene's +y
  const auto parent = Frame(scene, {1, 0, 0}, 0);
  parent->AddRotation(D3DRMCOMBINE_BEFORE, 1, 0, 0, 0.9f);
  const auto frame = Frame(parent, {0, 0, 4}, 0);
  frame->AddRotation(D3DRMCOMBINE_BEFORE, 1, 0, 0, -0.9f);
  const Vector place = Place(frame, scene);
  ExpectNear(Direction(frame, scene), {0, 0, 1});
  frame->SetRotation(ref, 0, 0, 2, 0.1f);
  ExpectNear(Direction(frame, scene), {0, 0, 1});
  for (int i = 0; i < 5; ++i) canvas.Update();
  ExpectNear(Direction(frame, scene), {std::sin(0.5f), 0, std::cos(0.5f)});
  ExpectNear(Place(frame, scene), place, 0);
  frame->SetRotation(scene, 0, 0, 0, 0);
  const Vector reached = Direction(frame, scene);
  for (int i = 0; i < 5; ++i) canvas.Update();
  EXPECT_EQ(Direction(frame, scene), reached);
}

TEST_F(GraphTest, LookAtNeverRolls) {
  const auto tilted = Frame(scene, {3, -4, 5}, 0.6f);
  tilted->AddRotation(D3DRMCOMBINE_BEFORE, 1, 0, 1, 0.9f);
  const auto target = Frame(scene, {}, 0);
  for (const auto &parent : {scene, tilted}) {
    const auto camera = Frame(parent, {}, 0.2f);
    for (int i = 0; i < 500; ++i) {
      camera->SetPosition(scene, Any(-130, 130), Any(-10, 30), Any(-130, 130));
      target->SetPosition(scene, Any(-90, 90), Any(-200, 20), Any(-90, 90));
      camera->LookAt(target, scene, D3DRMCONSTRAIN_Z);
      const Vector ahead = Place(target, camera);
      ASSERT_NEAR(ahead.x, 0.0f, 1e-3f);
      ASSERT_NEAR(ahead.y, 0.0f, 1e-3f);
      ASSERT_GT(ahead.z, 0.0f);
      ASSERT_NEAR(camera->World().Right.y, 0.0f, 1e-6f);
      ASSERT_GE(camera->World().Up.y, 0.0f);
      ExpectUpright(camera);
    }
  }
}

TEST_F(GraphTest, ATargetStraightAboveOrBelowIsLookedAtToo) {
  const auto target = Frame(scene, {}, 0);
  for (const float height : {-50.0f, 50.0f}) {
    for (const auto &[axis, turn] : {std::pair{Vector{0, 1, 0}, 2.0f},
                                     {Vector{1, 0, 0}, 1.0f},
                                     {Vector{0, 0, 1}, QuarterTurn}, // its +x is the direction to look in
                                     {Vector{0, 0, 1}, -QuarterTurn}}) {
      const auto camera = Frame(scene, {4, 1, 2}, 0);
      camera->AddRotation(D3DRMCOMBINE_BEFORE, axis.x, axis.y, axis.z, turn);
      target->SetPosition(scene, 4, 1 + height, 2);
      camera->LookAt(target, scene, D3DRMCONSTRAIN_Z);
      ExpectNear(Direction(camera, scene), {0, height > 0 ? 1.0f : -1.0f, 0});
      ExpectUpright(camera);
    }
  }
  const auto camera = Frame(scene, {4, 1, 2}, 0.3f);
  const Vector before = Direction(camera, scene);
  camera->LookAt(camera, scene, D3DRMCONSTRAIN_Z);
  EXPECT_EQ(Direction(camera, scene), before) << "it can't look at itself";
}

TEST_F(GraphTest, NoRaySlipsThroughASheetOfManyFaces) {
  constexpr int Side = 71; // 10,082 faces
  const auto height = [](int x, int z) { return 0.25f * static_cast<float>((x * 7 + z * 13) % 9); };
  const auto level = Sheet(Side, "level", [](int, int) { return 0.0f; });
  const auto rough = Sheet(Side, "rough", height);
  const auto upright = Frame(scene, {0.3f, -0.5f, 0.1f}, 0), turned = Frame(scene, {0, -0.5f, 0}, 0.37f);
  for (const auto &mesh : {level, rough}) {
    for (const auto &frame : {upright, turned}) {
      frame->AddVisual(mesh);
      for (int i = 0; i < 4000; ++i) {
        // At corners, at midpoints of edges and diagonals, and in between.
        const float x = i % 4 == 3 ? Any(0, Side) : std::floor(Any(2, 2 * Side - 1)) / 2;
        const float z = i % 4 == 2 ? x : i % 4 == 3 ? Any(0, Side) : std::floor(Any(2, 2 * Side - 1)) / 2;
        Vector at{x - 0.5f * Side, mesh == level ? 0.0f : 1.0f, z - 0.5f * Side};
        const Transform world = frame->World();
        at = {world.Origin.x + at.x * world.Right.x + at.z * world.Direction.x, at.y + world.Origin.y,
              world.Origin.z + at.x * world.Right.z + at.z * world.Direction.z};
        ASSERT_EQ(Under(frame, {at.x, 9, at.z}), mesh->GetName()) << at.x << ' ' << at.z;
        const Vector slant{i % 3 == 0 ? Any(-0.1f, 0.1f) : 0.125f * static_cast<float>(i % 5 - 2), -1,
                           i % 3 == 1 ? Any(-0.1f, 0.1f) : 0.125f * static_cast<float>(i % 7 - 3)};
        const bool inside = x > 3 && x < Side - 3 && z > 3 && z < Side - 3;
        const D3DRMRAY ray{slant, {at.x - 8 * slant.x, at.y + 8, at.z - 8 * slant.z}};
        if (inside) {
          ASSERT_EQ(Along(frame, ray), mesh->GetName()) << at.x << ' ' << at.z << ' ' << i;
        }
      }
      frame->DeleteVisual(mesh);
    }
  }
}

TEST_F(GraphTest, ThePickIsTheNearestMeshBelowTheFrame) {
  const auto frame = Frame(scene, {0, -0.5f, 0}, 0);
  const auto child = Frame(frame, {0, 0.2f, 0}, 0.4f);
  const auto other = Frame(scene, {0, 0.4f, 0}, 0);
  const auto flat = [](int, int) { return 0.0f; };
  frame->AddVisual(Sheet(20, "low", flat));
  child->AddVisual(Sheet(4, "high", flat));
  other->AddVisual(Sheet(20, "elsewhere", flat));
  Vector hit;
  EXPECT_EQ(Under(frame, {0, 9, 0}, &hit), "high");
  ExpectNear(hit, {0, -0.3f, 0});
  EXPECT_EQ(Under(frame, {5, 9, 0}), "low");
  EXPECT_EQ(Under(frame, {0, -0.4f, 0}), "low") << "faces above the origin aren't hit";
  EXPECT_EQ(Under(frame, {0, -0.6f, 0}), "");
  const auto slope = Frame(scene, {}, 0);
  slope->AddVisual(Sheet(4, "slope", [](int x, int) { return static_cast<float>(x); })); // from 0 to 4
  EXPECT_EQ(Under(slope, {0.5f, 9, 0.5f}), "slope");
  EXPECT_EQ(Under(slope, {0.5f, 2.3f, 0.5f}), "") << "nor those of a mesh that is lower elsewhere";
  for (const float edge : {-10.0f, 10.0f}) {
    EXPECT_EQ(Under(frame, {edge, 9, 3}), "low") << "the edge belongs to the sheet";
    EXPECT_EQ(Under(frame, {std::nextafter(edge, 2 * edge), 9, 3}), "");
  }
  // A ray given in a moved and rotated frame.
  const auto ref = Frame(scene, {5, 1, 0}, QuarterTurn);
  Ref<Direct3DRMPickArray> picked;
  frame->RayPick(ref, {{0, -1, 0}, {0, 0, -4.5f}}, D3DRMRAYPICK_IGNOREFURTHERPRIMITIVES, picked);
  D3DRMPICKDESC description;
  EXPECT_EQ(picked->GetPickVisual(0, description)->GetName(), "high");
  ExpectNear(description.Position, {0.5f, -0.3f, 0});
  EXPECT_THROW(picked->GetPickVisual(1, description), SceneError);
}

TEST_F(GraphTest, ChangesOfAMeshThatHangsAlreadyCountAtOnce) {
  const auto frame = Frame(scene, {}, 0);
  const auto mesh = Sheet(4, "sheet", [](int, int) { return 0.0f; });
  frame->AddVisual(mesh);
  EXPECT_EQ(Under(frame, {1, 9, 1}), "sheet");
  std::uint64_t revision = canvas.RootObject->Revision();
  const auto shows = [&] {
    return canvas.RootObject->Revision() != std::exchange(revision, canvas.RootObject->Revision());
  };
  mesh->Translate(10, 3, 0);
  EXPECT_TRUE(shows());
  EXPECT_EQ(Under(frame, {1, 9, 1}), "");
  Vector hit;
  EXPECT_EQ(Under(frame, {10, 9, 1}, &hit), "sheet");
  ExpectNear(hit, {10, 3, 1});
  mesh->ScaleMesh(2, 2, 2);
  EXPECT_TRUE(shows());
  EXPECT_EQ(Under(frame, {20, 9, 3.5f}, &hit), "sheet");
  ExpectNear(hit, {20, 6, 3.5f});
  EXPECT_EQ(Under(frame, {10, 9, 1}), "");
  frame->DeleteVisual(mesh);
  EXPECT_TRUE(shows());
  EXPECT_EQ(Under(frame, {20, 9, 3.5f}), "");
  EXPECT_THROW(frame->DeleteVisual(mesh), SceneError);
  mesh->Translate(1, 1, 1);
  EXPECT_FALSE(shows()) << "a mesh without a frame is invisible";
}

TEST_F(GraphTest, AWrapComputesCoordinatesOnceInItsOwnSystem) {
  const auto mesh = Sheet(2, "sheet", [](int x, int) { return static_cast<float>(x); }); // y = x + 1
  const auto at = [&](float x, float z) {
    const auto &places = mesh->Data().Positions;
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (places[i].x == x && places[i].z == z) return mesh->Data().TextureCoordinates[i];
    }
    throw std::logic_error("no such vertex");
  };
  const auto wrap = [&](const Ref<Direct3DRMFrame3> &ref, const Vector &o, const Vector &d, const Vector &u) {
    canvas.RootObject
        ->CreateWrap(D3DRMWRAP_FLAT, ref, o.x, o.y, o.z, d.x, d.y, d.z, u.x, u.y, u.z, 0.5f, 0.25f, 2, 3)
        ->Apply(mesh);
  };
  const auto expect = [&](float x, float z, float u, float v) {
    EXPECT_NEAR(at(x, z).u, u, Near);
    EXPECT_NEAR(at(x, z).v, v, Near);
  };
  wrap(nullptr, {}, {0, 1, 0}, {}); // from above: u along x, v along z
  expect(1, -1, 2 * 1 - 0.5f, 3 * -1 - 0.25f);
  wrap(nullptr, {1, 0, 0}, {0, 0, 1}, {0, 1, 0}); // from the front, its origin to the right
  expect(1, -1, 2 * 0 - 0.5f, 3 * 2 - 0.25f);
  expect(-1, 1, 2 * -2 - 0.5f, 3 * 0 - 0.25f);
  wrap(Frame(scene, {0, 0, 1}, QuarterTurn), {}, {0, 0, 1}, {0, 1, 0}); // from the left: x is the scene's -z
  expect(1, -1, 2 * 2 - 0.5f, 3 * 2 - 0.25f);
  mesh->ScaleMesh(1, 5, 1);
  expect(1, -1, 2 * 2 - 0.5f, 3 * 2 - 0.25f);
  EXPECT_THROW(wrap(nullptr, {}, {0, 1, 0}, {0, 2, 0}), SceneError);
}

TEST_F(GraphTest, AFileThatIsNoModelOrNoPictureIsNamed) {
  const auto text = [](const fs::path &file) {
    std::ostringstream all;
    all << std::ifstream(file, std::ios::binary).rdbuf();
    return all.str();
  };
  const std::string model = text(fs::path(SNAPWEDGE_GAME_DIR) / "goal.dax");
  const std::string picture = text(fs::path(SNAPWEDGE_GAME_DIR) / "loose.dab");
  std::vector<std::pair<std::string, std::string>> rows{
      {"empty.dax", ""},        {"words.dax", "Dear reader, this is a letter.\n"},
      {"picture.dax", picture}, {"noface.dax", "xof 0303txt 0032\n"},
      {"empty.dab", ""},        {"words.dab", "Dear reader"},
      {"model.dab", model}};
  for (int part = 1; part < 40; ++part) {
    rows.emplace_back("cut" + std::to_string(part) + ".dax",
                      model.substr(0, model.size() * static_cast<std::size_t>(part) / 40));
    rows.emplace_back("cut" + std::to_string(part) + ".dab",
                      picture.substr(0, picture.size() * static_cast<std::size_t>(part) / 40));
  }
  for (const auto &[name, content] : rows) std::ofstream(directory / name, std::ios::binary) << content;
  rows.emplace_back("missing.dax", "");
  rows.emplace_back("missing.dab", "");
  for (const auto &row : rows) {
    const std::string &name = row.first;
    try {
      if (name.ends_with(".dax")) {
        canvas.RootObject->CreateMeshBuilder()->LoadFromFile(directory / name);
      } else {
        canvas.RootObject->LoadTexture(directory / name);
      }
      ADD_FAILURE() << name << " was accepted";
    } catch (const SceneError &error) {
      EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
    }
  }
}

TEST_F(GraphTest, AReleasedImageIsReadAgain) {
  const auto texture = canvas.RootObject->LoadTexture(fs::path(SNAPWEDGE_GAME_DIR) / "loose.dab");
  const std::vector<std::uint8_t> pixels = texture->Image()->Pixels;
  ASSERT_FALSE(pixels.empty());
  const std::weak_ptr<const ImageData> image = texture->Image();
  texture->ReleaseImage();
  ClearFileCache();
  EXPECT_TRUE(image.expired());
  EXPECT_EQ(texture->Image()->Pixels, pixels);
}

} // namespace
