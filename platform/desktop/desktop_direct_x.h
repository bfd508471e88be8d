#pragma once

#include "platform/direct_x.h"

class DesktopMachine;

class DesktopDirectX : public DirectX7 {
public:
  explicit DesktopDirectX(DesktopMachine &machine) : machine_(machine) {}
  std::shared_ptr<DirectSound> DirectSoundCreate(const std::string &device) override;
  std::shared_ptr<DirectPlay4> DirectPlayCreate(const std::string &provider) override;
  int SystemBpp() override;

private:
  DesktopMachine &machine_;
};
