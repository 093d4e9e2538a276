#pragma once

#include <deque>
#include <mutex>

#include <QObject>
#include <QSet>

#include "ChangeFeed.h"

namespace stagehost {

/// Prints the changes of the show as they come, one line each, on standard output: the time and what has changed, or
/// one JSON object.
///
/// Changes are taken on the thread of the feed and printed on the main thread, whenever that looks at its events.
class ChangePrinter : public QObject {
    Q_OBJECT

public:
    /// @param feed must outlive the printer. @param names objects to print, all when empty.   [host main]
    ChangePrinter(ChangeFeed& feed, const QStringList& names, bool json);
    /// Prints what has come and not been printed.
    ~ChangePrinter() override;
    ChangePrinter(const ChangePrinter&) = delete;
    ChangePrinter& operator=(const ChangePrinter&) = delete;

    /// Prints what has changed up to now.   [host main]
    void CatchUp();

private:
    void Flush();
    void Take(const ShowChange& change);
    void PrintChange(const ShowChange& change) const;

    ChangeFeed& m_feed;
    const QSet<QString> m_names;
    const bool m_json;
    std::mutex m_lock; ///< guards m_queue
    std::deque<ShowChange> m_queue;
    Subscription m_subscription;
};

} // namespace stagehost
