#pragma once

#include <cstdint>
#include <functional>
#include <mutex>

#include <QString>

class IScriptObjectOwner;

/// Tells in the log what a bound has dropped, by its number.   [any]
/// - The first that is dropped is told at once, what follows once a second at most.
/// - All that was counted is told, once: the rest by TellRest.
class DropLog {
public:
    /// Writes a line. Called without a lock, by two threads at once when both have something to tell.
    using Tell = std::function<void(std::uint64_t count)>;

    explicit DropLog(Tell tell);
    /// @param clock another one than the system's, in milliseconds that wrap at 2^32.
    DropLog(Tell tell, std::uint32_t (*clock)());

    /// Counts what was dropped, and tells it if a second has passed since the last line.
    void Note(std::uint64_t count);
    /// The same without anything new, for those who look now and then.
    void TellDue() { Note(0); }
    /// Tells what has been counted since the last line, if there is any: the flood is over.
    void TellRest();

private:
    std::uint64_t Take(std::uint64_t count, std::uint32_t betweenLinesMs);
    void Write(std::uint64_t count) const;

    const Tell m_tell;
    std::uint32_t (*const m_clock)();
    std::mutex m_lock;
    std::uint64_t m_untold = 0;   ///< under m_lock
    std::uint32_t m_lastTold = 0; ///< under m_lock
    bool m_hasTold = false;       ///< under m_lock
};

/// The line of an object whose script does not keep up. @param owner borrowed; null writes nothing.
/// @param describe what is dropped and where, in the plural, such as "datagrams at port 9000".
DropLog::Tell TellOfSlowScript(IScriptObjectOwner* owner, std::function<QString()> describe);
