#pragma once

#include <csignal>
#include <map>
#include <optional>

namespace fi_rotate {

// From construction to destruction a signal that asks the program to end (Ctrl-C, a closed terminal, kill) is
// only noted, so that the work can stop in good order. At most one exists at a time.
class CInterrupt {
public:
    CInterrupt();
    ~CInterrupt();
    CInterrupt(const CInterrupt&) = delete;
    CInterrupt& operator=(const CInterrupt&) = delete;

    // The signal that came.
    [[nodiscard]] std::optional<int> signal() const;

private:
    std::map<int, struct sigaction> saved;
};

}  // namespace fi_rotate
