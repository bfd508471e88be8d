#pragma once

// The canvas: the control of a window in which a scene shows. It owns the roots of the graph and hands the
// drawing to the machine.

#include "platform/machine.h"
#include "scene/graph/direct3drm3.h"

class RMCanvas : public Canvas {
public:
  explicit RMCanvas(Machine &machine) : machine_(machine) {}

  /// Brings the graph up. Called once, before any other member is used.
  void Start();

  /// Turns every frame that turns steadily by one step, then has the scene drawn. Waits for no clock.
  void Update();

  /// Gives the canvas the keyboard.
  void SetFocus();

  Ref<Direct3DRM3> RootObject;
  Ref<Direct3DRMFrame3> SceneFrame;  ///< root of what is shown; stays at the origin, unturned
  Ref<Direct3DRMFrame3> CameraFrame; ///< the view runs along its +z, its +y is up on the screen
  Ref<Direct3DRMViewport2> Viewport;

private:
  Machine &machine_;
};
