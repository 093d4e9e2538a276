#include "ChangePrinter.h"

#include <QDateTime>
#include <QJsonObject>

#include "ActionObjects.h"
#include "BorderText.h"
#include "Output.h"

namespace stagehost {

namespace {

QDateTime TimeOf(const ShowChange& change) {
    const auto passed = change.time.time_since_epoch();
    return QDateTime::fromMSecsSinceEpoch(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
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
    : feed_(feed)
    , names_(names.begin(), names.end())
    , json_(json)
    , subscription_(feed.Subscribe([this](const ShowChange& change) { Take(change); })) {}

ChangePrinter::~ChangePrinter() {
    CatchUp();
    subscription_.reset();
    Flush();
}

void ChangePrinter::CatchUp() {
    feed_.Settle();
    Flush();
}

void ChangePrinter::Flush() {
    std::deque<ShowChange> changes;
    {
        const std::lock_guard<std::mutex> hold(lock_);
        changes.swap(queue_);
    }
    for (const auto& change : changes)
        PrintChange(change);
}

void ChangePrinter::Take(const ShowChange& change) {
    if (!names_.isEmpty() && !names_.contains(FromBorderText(change.object)))
        return;
    {
        const std::lock_guard<std::mutex> hold(lock_);
        queue_.push_back(change);
    }
    QMetaObject::invokeMethod(this, &ChangePrinter::Flush, Qt::QueuedConnection);
}

void ChangePrinter::PrintChange(const ShowChange& change) const {
    const QDateTime time = TimeOf(change);
    if (!json_)
        return PrintLine(time.toString(QStringLiteral("HH:mm:ss.zzz  ")) + LineOf(change));
    PrintJsonLine({{QStringLiteral("time"), time.toUTC().toString(Qt::ISODateWithMs)},
                   {QStringLiteral("kind"), QLatin1String(RowOf(change.kind).name)},
                   {QStringLiteral("object"), FromBorderText(change.object)},
                   {QStringLiteral("property"), FromBorderText(change.property)},
                   {QStringLiteral("value"), FromBorderText(change.value)}});
}

} // namespace stagehost
