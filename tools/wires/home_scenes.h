#pragma once

// Scenes in home networks: behind routers with and without port mapping, and behind firewalls.

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

  void PlayMatch(); ///< plays a match of one round, from the play windows to the end of both programs
  void Start();     ///< starts both programs
  void Host();      ///< the host creates a game
};
