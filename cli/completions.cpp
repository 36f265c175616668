// Prints the completion of a shell, made from the template SCRIPT. Usage: fi-rotate-completions SCRIPT

#include <cstdio>

#include "cli/command/program.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: fi-rotate-completions SCRIPT\n", stderr);
        return 2;
    }
    return fi_rotate::printCompletionOrReport(argv[1]) ? 0 : 1;
}
