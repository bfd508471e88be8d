#include "front/run_program.h"

#include "front/check_files.h"
#include "net/frm_new_net.h"

void RunProgram(Machine &machine, Program &program) {
  try {
    frmNewNet launch(machine, program);
    launch.Form_Load();
    // Once the launch window is on the screen, so that the checks don't delay it.
    machine.Pump();
    CheckInformationFiles(machine);
    CheckMatchFiles(machine, program);
    while (launch.Visible) machine.Wait();
  } catch (const ProgramEnd &) { // leaves through whatever was open
  } catch (...) {
    program.DP.reset(); // the other player must not wait while this one reads what has happened
    throw;
  }
}
