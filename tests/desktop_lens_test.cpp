// What the lens shows: always the piece, and with it the target of the shot.

#include "platform/desktop/renderer/lens.h"
#include "tests/game_kit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>

namespace {

constexpr float FrameWidth = 417.0f, FrameHeight = 361.0f; // of the canvas, pixels
constexpr float PieceWidth = 10.0f;                        // scene units

/// The game with a lens that is updated at every frame.
struct Shot {
  explicit Shot(const char *mode = "Human") {
    game.program.GameMode = mode;
    game.SetUp();
    game.machine.OnDraw = [this](Canvas &) { Take(); };
  }

  void Take() {
    const auto &scene = *game.window.RMCanvas1.SceneFrame;
    std::vector<Item> items = Collect(scene);
    for (Item &item : items) {
      const auto &mesh = *item.Mesh;
      const auto [box, isNew] = boxes.try_emplace(mesh.get());
      if (isNew) box->second = Bounds::Of(mesh->Data());
      item.SetBounds(box->second);
    }
    view = lens.Next(*game.window.CameraFrame, items, FrameWidth / FrameHeight);
    if (onFrame) onFrame();
  }

  void Settle() {
    do Take();
    while (!lens.Settled());
  }

  /// Normalised device coordinates of a point: -1 to 1 from left to right and from bottom to top.
  QVector3D At(const Vector &place) const {
    const QVector3D p = MatrixOf(view.Camera).inverted().map(QVector3D(place.x, place.y, place.z));
    const float half = view.Height / 2;
    return {p.x() / p.z() / half * FrameHeight / FrameWidth, p.y() / p.z() / half, p.z()};
  }
  bool Shows(const Vector &place) const {
    const QVector3D at = At(place);
    return at.z() > 0 && std::abs(at.x()) <= 1 && std::abs(at.y()) <= 1;
  }
  Vector Piece() const { return game.window.PieceFrame->World().Origin; }
  float PieceDistance() const { return At(Piece()).z(); }
  /// Width of the piece in pixels at scale 1.
  float PiecePixels() const { return PieceWidth / PieceDistance() / view.Height * FrameHeight; }

  bool PostsShow() const {
    const Vector bar = game.window.GoalFrame->World().Origin;
    return Shows({bar.x - 14, bar.y, bar.z}) && Shows({bar.x + 14, bar.y, bar.z});
  }

  void Put(float x, float z) {
    for (const auto &frame : {game.window.PieceFrame, game.window.AimFrame})
      frame->SetPosition(game.window.RMCanvas1.SceneFrame, x, 0, z);
  }
  void Camera(float x, float y, float z) {
    game.window.CameraFrame->SetPosition(game.window.RMCanvas1.SceneFrame, x, y, z);
    game.window.LookCam();
  }

  Game game;
  Lens lens;
  CameraView view;
  std::map<const Direct3DRMMeshBuilder3 *, Bounds> boxes;
  std::function<void()> onFrame;
};

TEST(LensTest, EverySituationShowsWhatItIsAbout) {
  constexpr Vector FarEdge{0, -0.5f, -88}, Bonus{0, -0.5f, -79.2f};
  struct Row {
    const char *name;
    float pieceX, pieceZ, cameraX, cameraY, cameraZ;
    float leastPixels;       ///< width of the piece
    bool posts, edge, bonus; ///< fully visible
    bool aims = true;        ///< the aim is visible too
  };
  const Row rows[] = {
      {"start of a possession", 0, 85, 0, 10, 120, 100, true, true, true},
      {"second attempt after a very weak flick", 0, 68, 0, 10, 103, 100, true, true, true},
      {"second attempt after a weak flick", 0, 55, 0, 10, 90, 100, true, true, true},
      {"second attempt after a short flick", 0, 40, 0, 10, 75, 100, true, true, true},
      {"second attempt", 3, -40, 8, 12, -5, 100, false, true, true},
      {"far away, as a first flick of 96 ends", 0, -69.6f, 0, 10, 120, 60, true, true, true, false},
      {"half way", -6, 30, 0, 10, 120, 75, true, true, true, false},
      {"sideline, start", 0, 85, 100, 20, 0, 50, false, false, false},
      {"sideline, far end", 4, -70, 100, 20, 0, 60, false, true, true, false},
      {"win camera, overhang", 10, -86, 88, 30, -88, 80, false, true, true, false},
      {"win camera, overhang far off", -80, -86, -88, 30, -88, 80, false, false, false, false},
      {"win camera, a gap of 20", 10, -66, 88, 30, -88, 80, false, true, true, false},
      {"close-up at the far edge", -20, -86, -15, 20, -67, 80, false, false, false, false},
      {"orbit, low at a near corner", 0, 85, 130, 5, 130, 55, false, false, false},
      {"orbit, high at the far side", 0, -20, -40, 30, -130, 70, false, false, false},
      {"farthest orbit", 0, 85, 0, 30, -130, 50, false, false, false},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Shot shot;
    shot.Put(row.pieceX, row.pieceZ);
    shot.Camera(row.cameraX, row.cameraY, row.cameraZ);
    if (!row.aims) shot.game.window.ArrowFrame->DeleteVisual(shot.game.window.ArrowMesh);
    shot.Settle();
    EXPECT_GE(shot.PiecePixels(), row.leastPixels);
    const QVector3D piece = shot.At(shot.Piece());
    EXPECT_LT(std::abs(piece.x()), 0.5f) << "under a card";
    EXPECT_GT(piece.y(), -0.8f);
    EXPECT_LT(piece.y(), 0.1f) << "not in the lower part";
    EXPECT_TRUE(!row.posts || shot.PostsShow());
    EXPECT_TRUE(!row.edge || shot.Shows({row.pieceX, FarEdge.y, FarEdge.z}));
    EXPECT_TRUE(!row.bonus || shot.Shows(Bonus));
  }
}

TEST(LensTest, ThePieceIsFoundInEveryFrameOfAShot) {
  constexpr float LargestZoom = 1.11f; // between two frames
  constexpr float LargestSway = 6.0f;  // change of the piece's motion between two frames, pixels
  struct Row {
    const char *name, *mode;
    float leastPixels; ///< width of the piece in every frame
    float highest;     ///< place of its centre
    std::function<void(Shot &)> play;
  };
  const auto flick = [](float power, float turn) {
    return [power, turn](Shot &shot) mutable {
      auto &window = shot.game.window;
      window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
      window.ReadAim();
      window.ReadShotPlace();
      window.Flick(window.FrameX, window.FrameY, window.FrameZ, power, window.X1, window.Y1, window.Z1,
                   window.X2, window.Y2, window.Z2, window.Player);
    };
  };
  const auto kick = [](float power, float turn, int after) {
    return [power, turn, after](Shot &shot) mutable {
      auto &window = shot.game.window;
      window.PieceFrame->SetOrientation(window.RMCanvas1.SceneFrame, 0, 0, 1, 1, 0, 0);
      window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, turn);
      for (int i = 0; i < after; ++i) window.MoveGoal();
      window.GetFmain();
      window.KickFB(window.KickFrameX, window.KickFrameY, window.KickFrameZ, power, window.KickX1,
                    window.KickY1, window.KickZ1, window.KickX2, window.KickY2, window.KickZ2);
    };
  };
  const auto fromSide = [](auto shoot) {
    return [shoot](Shot &shot) mutable {
      shot.Camera(100, 20, 0);
      shoot(shot);
    };
  };
  const Row rows[] = {
      {"a long flick", "Human", 70, -0.4f, flick(96, 0)},
      {"a flick to the side", "Human", 70, -0.4f, flick(64, 0.5f)},
      {"an overcharge, with its fall", "Human", 50, 0.7f, flick(120, 0)},
      {"from the sideline, a long flick", "Human", 40, -0.4f, fromSide(flick(96, 0))},
      {"from the sideline, a flick askew", "Human", 40, -0.4f, fromSide(flick(64, 0.1f))},
      {"a kick", "Human", 22, 0.9f, kick(96, 0, 0)},
      {"a weak kick", "Human", 22, 0.9f, kick(72, 0, 180)},
      {"a kick wide of the posts", "Human", 22, 0.9f, kick(72, 0.3f, 200)},
      {"the computer's possession", "Computer", 40, 0.7f,
       [](Shot &shot) {
         shot.game.program.MyTurn = False;
         for (int attempt = 0; attempt < 3; ++attempt) shot.game.window.CompShot1();
       }},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    Shot shot(row.mode);
    int frames = 0, sinceCut = 0, lost = 0, tiny = 0, high = 0, jerks = 0, sways = 0;
    Vector camera;
    CameraView last;
    QVector3D place, step; // of the piece in the frame
    shot.onFrame = [&] {
      const QVector3D at = shot.At(shot.Piece()), moved = at - place;
      lost += !shot.Shows(shot.Piece()) || std::abs(at.x()) > 0.9f;
      tiny += shot.PiecePixels() < row.leastPixels;
      high += at.y() > row.highest;
      const Vector now = shot.game.window.CameraFrame->World().Origin;
      const float change = shot.view.Height / last.Height;
      jerks += camera == now && frames > 0 && (change > LargestZoom || change < 1 / LargestZoom);
      sinceCut = camera == now ? sinceCut + 1 : 0;
      sways += sinceCut > 3 && (moved - step).toVector2D().length() * FrameWidth / 2 > LargestSway;
      ++frames;
      camera = now;
      last = shot.view;
      place = at;
      step = moved;
    };
    row.play(shot);
    EXPECT_GT(frames, 50);
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(tiny, 0);
    EXPECT_EQ(high, 0);
    EXPECT_LE(jerks, 1) << "a turnover may leave the camera where it is";
    EXPECT_LE(sways, 0) << "the piece's path in the frame has bends";
  }
}

TEST(LensTest, AKickFliesOverTheFieldAndEndsWithPieceAndPostsInTheFrame) {
  constexpr float CardLeft = 0.53f; // of the result cards, in the frame
  for (const int after : {0, 100, 180, 260}) {
    for (const float power : {72.0f, 96.0f}) {
      SCOPED_TRACE(testing::Message() << "power " << power << ", after " << after << " steps of the posts");
      Shot shot;
      auto &window = shot.game.window;
      for (int i = 0; i < after; ++i) window.MoveGoal();
      float force = power;
      bool shown = false, covered = false;
      int skies = 0;
      shot.onFrame = [&] {
        if (window.KickRise == 0) return;
        const Vector piece = shot.Piece(), bar = window.GoalFrame->World().Origin;
        skies += shot.At({-88, -0.5f, std::clamp(piece.z, -88.0f, 88.0f)}).y() < -1;
        shown = shot.PostsShow() && shot.Shows(piece);
        covered = std::abs(bar.x) < 14 && shot.At({bar.x - 14, bar.y, bar.z}).x() > CardLeft;
      };
      window.GetFmain();
      window.KickFB(window.KickFrameX, window.KickFrameY, window.KickFrameZ, force, window.KickX1,
                    window.KickY1, window.KickZ1, window.KickX2, window.KickY2, window.KickZ2);
      EXPECT_TRUE(shown);
      EXPECT_FALSE(covered) << "the piece is between posts of which one is under the card";
      EXPECT_EQ(skies, 0) << "the field beyond the piece is below the frame";
    }
  }
}

TEST(LensTest, AFallComesOutBelowTheTable) {
  constexpr float LowestEdge = 0.33f; // in the frame: the table's underside covers at most a third
  struct Row {
    const char *name;
    float x, z, power, turn;
    Vector edge; ///< lower edge of the table, where the piece falls
  };
  for (const Row &row : {Row{"over the far edge, from far away", 0, 85, 120, 0, {0, -3.9f, -86}},
                         Row{"over the far edge", 0, -40, 80, 0, {0, -3.9f, -86}},
                         Row{"over the side", 0, 20, 88, 1.2f, {-86, -3.9f, -14}}}) {
    SCOPED_TRACE(row.name);
    Shot shot;
    auto &window = shot.game.window;
    shot.Put(row.x, row.z);
    shot.Camera(row.x, 10, row.z + 35);
    shot.Settle();
    int falls = 0, lost = 0, boards = 0;
    shot.onFrame = [&] {
      if (window.CameraFrame->World().Origin.y > 0) return;
      ++falls;
      lost += std::abs(shot.At(shot.Piece()).y()) > 0.8f;
      boards += shot.At(row.edge).y() < LowestEdge;
    };
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, row.turn);
    window.ReadAim();
    window.ReadShotPlace();
    float power = row.power;
    window.Flick(window.FrameX, window.FrameY, window.FrameZ, power, window.X1, window.Y1, window.Z1,
                 window.X2, window.Y2, window.Z2, window.Player);
    EXPECT_EQ(falls, 50);
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(boards, 0) << "the table's underside fills the frame";
  }
}

TEST(LensTest, TheViewStaysWhileSomebodyAimsAndSettlesUnderMovingPosts) {
  Shot shot;
  auto &window = shot.game.window;
  shot.Settle();
  const CameraView before = shot.view;
  for (int frame = 0; frame < 20; ++frame) {
    window.AimFrame->AddRotation(D3DRMCOMBINE_BEFORE, 0, 1, 0, frame % 2 ? 0.01f : -0.01f);
    window.LookCam();
    shot.Take();
  }
  EXPECT_EQ(shot.view.Height, before.Height);
  EXPECT_EQ(shot.view.Camera, before.Camera);

  shot.Camera(0, 15, 119);
  constexpr int ThereAndBack = 360, UntilSettled = 45;
  for (int frame = 0; frame < ThereAndBack; ++frame) {
    window.MoveGoal();
    shot.Take();
    EXPECT_TRUE(frame < 2 || shot.PostsShow()) << "frame " << frame;
    EXPECT_TRUE(frame < UntilSettled || shot.lens.Settled()) << "frame " << frame;
  }

  // From the side there is no room for the posts' path.
  window.SideCam();
  window.LookCam();
  shot.Settle();
  const float side = shot.view.Height;
  for (int frame = 0; frame < ThereAndBack; ++frame) {
    window.MoveGoal();
    shot.Take();
    EXPECT_EQ(shot.view.Height, side) << "frame " << frame;
  }
}

TEST(LensTest, APossessionBeginsWithTheSameViewWhereverThePostsEnded) {
  constexpr int FromTheComputersKick = 8; // scene units that `Reset` moves the posts
  Shot shot;
  auto &window = shot.game.window;
  shot.Settle();
  const float before = shot.view.Height;
  window.SideCam();
  window.LookCam();
  for (int frame = 0; frame < FromTheComputersKick; ++frame) {
    window.MoveGoal();
    shot.Take();
  }
  window.Reset();
  shot.Settle();
  EXPECT_EQ(shot.view.Height, before);
}

} // namespace
