#include "cli/command/program.h"

int main(int argc, char** argv) {
    return fi_rotate::runProgram(argc, argv);
}
