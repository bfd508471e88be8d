#include "scene/graph/rm_canvas.h"

void RMCanvas::Start() {
  RootObject = std::make_shared<Direct3DRM3>();
  SceneFrame = RootObject->CreateFrame(nullptr);
  CameraFrame = RootObject->CreateFrame(SceneFrame);
  Viewport = std::make_shared<Direct3DRMViewport2>();
}

void RMCanvas::Update() {
  SceneFrame->StepRotation();
  machine_.DrawCanvas(*this);
}

void RMCanvas::SetFocus() { machine_.SetFocus(*this); }
