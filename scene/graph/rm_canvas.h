#pragma once

// The canvas: the control that shows a scene. It owns the roots of the graph; the machine draws it.

#include "platform/machine.h"
#include "scene/graph/direct3drm3.h"

class RMCanvas : public Canvas {
public:
  explicit RMCanvas(Machine &machine) : machine_(machine) {}

  /// Creates the graph. Must be called once, before any other member is used.
  void Start();

  /// Advances every continuous rotation by one step and draws the scene. Doesn't wait.
  void Update();

  /// Gives the canvas the keyboard focus.
  void SetFocus();

  Ref<Direct3DRM3> RootObject;
  Ref<Direct3DRMFrame3> SceneFrame;  ///< root of the visible tree; stays at the origin
  Ref<Direct3DRMFrame3> CameraFrame; ///< looks along its +z, with +y up on the screen
  Ref<Direct3DRMViewport2> Viewport;

private:
  Machine &machine_;
};
