#pragma once

#include <cstdint>
#include <optional>

namespace stagehost {

/// @file
/// What a serial line does behind its port object: questions that the toolkit has no words for. All take the handle of
/// an open port and come back at once, but DrainLine.   [the port's thread]

/// The settings that a line really works with.
struct LineSettings {
    std::uint32_t baudRate = 0; ///< 0: a rate without a name of its own
    std::uint32_t dataSize = 8;
    std::uint32_t parity = 0; ///< 0 none, 1 odd, 2 even
    std::uint32_t stopBits = 1;
    bool hardwareFlow = false; ///< Request To Send and Clear To Send hold data up
};

/// @return nothing when the line does not tell.
std::optional<LineSettings> ReadLineSettings(std::intptr_t handle);

/// What came in wrong since the port was opened, counted by its driver.
struct LineCounters {
    int breaks = 0;
    int errors = 0; ///< parity, framing, overruns
};

/// @return nothing when the driver does not count.
std::optional<LineCounters> ReadLineCounters(std::intptr_t handle);

/// Bytes that the driver has taken and not sent yet; 0 when it does not tell.
int UnsentBytes(std::intptr_t handle);

/// Waits until the last byte has left the line. To be called when UnsentBytes is 0: what is left then is
/// what the hardware holds.
void DrainLine(std::intptr_t handle);

/// Whether what is behind the line has gone: the adapter was pulled out, the other end of a pseudo-terminal closed.
bool IsHungUp(std::intptr_t handle);

} // namespace stagehost
