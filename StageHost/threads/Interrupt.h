#pragma once

namespace stagehost {

/// Notes Ctrl-C, the system's request to end and the end of the terminal instead of ending the program at once, while
/// an object stands. A second one of any of them ends it. What whoever started the program wanted ignored stays so.
/// [host main]
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
