#pragma once

// Sound and display of the headless machine.

#include "platform/headless/headless_machine.h"

class HeadlessDirectX : public DirectX7 {
public:
  explicit HeadlessDirectX(HeadlessMachine &machine) : machine_(machine) {}

  std::shared_ptr<DirectSound> DirectSoundCreate(const std::string &device) override;
  std::shared_ptr<DirectPlay4> DirectPlayCreate(const std::string &provider) override;
  int SystemBpp() override { return machine_.Bpp; }

private:
  HeadlessMachine &machine_;
};
