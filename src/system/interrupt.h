// A request to end, by SIGINT or SIGTERM, taken as the wish for what is known by now: the first one
// is noticed by whoever asks for it, and a second one ends the process at once.

#pragma once

#include <csignal>

namespace tervoxal {

class Interrupt {
public:
    /// Holds the signals back from here on, but for those that are ignored.
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Whether one has come. Asked often.
    [[nodiscard]] bool came();

private:
    sigset_t requests{};
    sigset_t before{};
    bool seen = false;
};

} // namespace tervoxal
