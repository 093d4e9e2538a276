#pragma once

namespace stagehost {

/// Notes Ctrl-C, the system's request to end and the end of the terminal instead of ending the program at once, while
/// an object stands. A second one of any of them ends it. Only the end of the terminal stays ignored where whoever
/// started the program wanted it so.   [host main]
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Whether it has come.
    static bool HasCome();

    /// A descriptor that becomes readable once it has come, and stays so; -1 when the system has none left.
    static int Bell();
};

} // namespace stagehost
