#include "ChangePrinter.h"

#include <QDateTime>
#include <QJsonObject>

#include "ActionObjects.h"
#include "BorderText.h"
#include "Colors.h"
#include "Output.h"

namespace stagehost {

namespace {

QDateTime TimeOf(const ShowChange& change) {
    const auto passed = change.time.time_since_epoch();
    return QDateTime::fromMSecsSinceEpoch(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

/// An object's own name, or that of the device whose variable it is.
bool IsNamed(const QSet<QString>& names, const QString& object) {
    return names.contains(object) || names.contains(object.section(QLatin1Char('.'), 0, 0));
}

/// "Level = 50", "Task Overture: Status = Running".
QString LineOf(const ShowChange& change) {
    const QString object = FromBorderText(change.object);
    const QString value = OneLine(FromBorderText(change.value));
    if (change.kind == ObjectKind::Variable)
        return QStringLiteral("%1 = %2").arg(object, value);
    const bool loads = change.kind == ObjectKind::Show && change.property == kLoadedProperty;
    return QStringLiteral("%1 %2: %3 = %4%5")
        .arg(QLatin1String(RowOf(change.kind).name), object, FromBorderText(change.property), value,
             QLatin1String(loads ? " (its entry is played, the show that runs goes on)" : ""));
}

} // namespace

ChangePrinter::ChangePrinter(ChangeFeed& feed, const QStringList& names, bool json)
    : m_feed(feed)
    , m_names(names.begin(), names.end())
    , m_json(json)
    , m_subscription(feed.Subscribe([this](const ShowChange& change) { Take(change); })) {}

ChangePrinter::~ChangePrinter() {
    CatchUp();
    m_subscription.reset();
    Flush();
}

void ChangePrinter::CatchUp() {
    m_feed.Settle();
    Flush();
}

void ChangePrinter::Flush() {
    std::deque<ShowChange> changes;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        changes.swap(m_queue);
    }
    for (const auto& change : changes)
        PrintChange(change);
}

void ChangePrinter::Take(const ShowChange& change) {
    if (!m_names.isEmpty() && !IsNamed(m_names, FromBorderText(change.object)))
        return;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_queue.push_back(change);
    }
    QMetaObject::invokeMethod(this, &ChangePrinter::Flush, Qt::QueuedConnection);
}

void ChangePrinter::PrintChange(const ShowChange& change) const {
    const QDateTime time = TimeOf(change);
    if (!m_json)
        return PrintLine(OnOutput(Ink::Faint, time.toString(QStringLiteral("HH:mm:ss.zzz"))) + QStringLiteral("  ") +
                         LineOf(change));
    PrintJsonLine({{QStringLiteral("time"), time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs)},
                   {QStringLiteral("kind"), QLatin1String(RowOf(change.kind).name)},
                   {QStringLiteral("object"), FromBorderText(change.object)},
                   {QStringLiteral("property"), FromBorderText(change.property)},
                   {QStringLiteral("value"), FromBorderText(change.value)}});
}

} // namespace stagehost
