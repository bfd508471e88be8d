#include "front/run_program.h"

#include "net/frm_new_net.h"

int RunProgram(Machine &machine, Program &program) {
  try {
    frmNewNet launch(machine, program);
    launch.Form_Load();
    while (launch.Visible) machine.Wait();
    return 0;
  } catch (const ProgramEnd &end) {
    return end.Status;
  }
}
