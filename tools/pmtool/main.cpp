#include "program.h"
#include "system.h"

int main(int argc, char** argv) {
    pmtool::prepare_process();
    return pmtool::run_program(pmtool::command_line(argc, argv));
}
