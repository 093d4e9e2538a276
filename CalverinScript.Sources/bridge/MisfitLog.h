#pragma once

#include <cstdint>

#include <QHash>
#include <QString>
#include <QStringList>

/// Which of the values that variables have not taken are told, so that a script that gives one in a loop does not fill the log: of each
/// variable three in a second at most, with the next one the number of those that were left out.   [script]
class MisfitLog {
public:
    /// @param nowMs of a clock that wraps at 2^32. @return the line; empty when nothing is to be told now.
    QString Line(const QString& variable, const QString& text, const QString& why, const QStringList& items,
                 std::uint32_t nowMs);

private:
    struct Entry {
        std::uint32_t beginMs = 0; ///< of the second that counts
        int told = 0;              ///< in it
        std::uint64_t leftOut = 0; ///< since the last line
    };
    QHash<QString, Entry> m_entries; ///< one for each variable that has not taken something
};
