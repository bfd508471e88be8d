#include "front/run_program.h"
#include "platform/desktop/desktop_machine.h"
#include "platform/desktop/open_al_sound.h"
#include "platform/desktop/opengl_test.h"

#include <future>
#include <iostream>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace {

int Fail(const std::string &why) {
  std::cerr << "Snapwedge can't continue: " << why << std::endl;
  return 1;
}

} // namespace

int main(int argc, char **argv) {
  try {
    if (AsksForOpenGLTest(argc, argv)) return TestOpenGL(argc, argv);
    // Opening the sound device can take as long as starting the toolkit, so both are done at once.
    std::packaged_task<std::shared_ptr<DirectSound>()> opening(OpenDefaultSound);
    std::future<std::shared_ptr<DirectSound>> sound = opening.get_future();
    try {
      std::thread(std::move(opening)).detach(); // a sound server that hangs must not hold up the end
    } catch (const std::system_error &) { // no thread is to be had: the device is opened when first used
      sound = {};
    }
    DesktopMachine machine(argc, argv);
    machine.UseSound(std::move(sound));
    machine.TryOpenGL();
    Program program(machine);
    try {
      RunProgram(machine, program);
      return 0;
    } catch (const std::exception &error) {
      machine.ShowCursor(-1);
      try {
        machine.MsgBox({std::string("Snapwedge can't continue.\n\n") + error.what(), "Snapwedge", true});
      } catch (const ProgramEnd &) { // by a signal, while the box is up
      } catch (const std::exception &second) {
        std::cerr << second.what() << std::endl;
      }
      return Fail(error.what());
    }
  } catch (const std::exception &error) {
    return Fail(error.what());
  }
}
