#pragma once

// Scenes in homes: behind routers that open a port or don't, and behind firewalls.

#include "tools/wires/scene.h"

class HomeScenes : public Scene {
public:
  using Scene::Scene;

private:
  Scenes All() override;

  void Router(const std::string &protocol);
  void Renewed();
  void Closed();
  void HostFirewall();
  void JoinerFirewall();
  void Reading();

  void PlayMatch(); ///< a whole match of one round, from the play windows to both programs' ends
  void Start();     ///< both programs
  void Host();      ///< the host waits
};
