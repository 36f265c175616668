#include "cli/terminal.h"

#include <sys/ioctl.h>

namespace fi_rotate {

std::size_t widthOfTerminal(int descriptor) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : kUsual;
}

}  // namespace fi_rotate
