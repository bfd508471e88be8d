#include "platform/desktop/desktop_direct_x.h"

#include "platform/desktop/asio/asio_network.h"
#include "platform/desktop/desktop_machine.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

std::shared_ptr<DirectSound> DesktopDirectX::DirectSoundCreate(const std::string &) {
  return machine_.TakeSound();
}

std::shared_ptr<DirectPlay4> DesktopDirectX::DirectPlayCreate(const std::string &) {
  return CreateAsioDirectPlay(machine_, &machine_.Router(),
                              [&machine = machine_](int socket) { return machine.Watch(socket); });
}

int DesktopDirectX::SystemBpp() {
  constexpr int HighColor = 16; // bits; also available on screens with more
  return std::min(QGuiApplication::primaryScreen()->depth(), HighColor);
}
