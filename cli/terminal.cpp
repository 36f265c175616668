#include "cli/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <limits>

namespace fi_rotate {

std::size_t widthOfTerminal(int descriptor) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : kUsual;
}

std::size_t widthOfOutput() {
    return isatty(STDOUT_FILENO) == 1 ? widthOfTerminal(STDOUT_FILENO)
                                      : std::numeric_limits<std::size_t>::max();
}

}  // namespace fi_rotate
