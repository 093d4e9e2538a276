#pragma once

namespace stagehost {

/// Notes Ctrl-C, and the system's request to end, instead of
/// ending the program at once, while an object stands. A second one ends it.   [host main]
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Whether it has come.
    static bool HasCome();
};

} // namespace stagehost
