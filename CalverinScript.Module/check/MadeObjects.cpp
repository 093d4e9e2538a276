#include "MadeObjects.h"

#include <QMetaMethod>
#include <QSet>

#include "HTTPClient.h"
#include "MScriptDMX.h"
#include "MScriptIOChannel.h"
#include "MScriptSerial.h"
#include "MScriptUDP.h"
#include "ScriptEvents.h"
#include "ScriptSource.h"
#include "TCPClient.h"

namespace {

QStringList MembersOf(std::initializer_list<const QMetaObject*> classes) {
    QSet<QString> names{QStringLiteral("toString"), QStringLiteral("hasOwnProperty"), QStringLiteral("valueOf")};
    for (const QMetaObject* one : classes)
        for (int i = one->methodOffset(); i < one->methodCount(); ++i)
            names.insert(QString::fromLatin1(one->method(i).name()));
    return names.values();
}

QStringList EventsOf(std::initializer_list<const char*> objects) {
    QStringList names;
    for (const char* object : objects)
        for (const ScriptEvent& event : kScriptEvents)
            if (QLatin1String(event.object) == QLatin1String(object) && !names.contains(QLatin1String(event.name)))
                names += QLatin1String(event.name);
    return names;
}

struct Factory {
    const char* name;
    MadeKind kind;
};

constexpr Factory kFactories[] = {
    {"CreateSocket", MadeKind::TCP}, {"CreateHTTPClient", MadeKind::HTTP}, {"GetResource", MadeKind::Resource}};

/// A name that is given nothing, or something that is no object, may get its object later.
bool IsPlaceholder(const ScriptSource& source, int value) {
    for (const char* word : {"null", "undefined", "false"})
        if (source.IsName(value, word))
            return true;
    const SourceWord& word = source.Words()[static_cast<std::size_t>(value)];
    return word.kind == WordKind::Number;
}

} // namespace

const MadeKindView& ViewOf(MadeKind kind) {
    static const MadeKindView views[] = {
        {QStringLiteral("a TCP client"), EventsOf({"TCPClient"}), MembersOf({&TCPClient::staticMetaObject})},
        {QStringLiteral("a UDP object"), EventsOf({"UDPObject"}), MembersOf({&MScriptUDP::staticMetaObject})},
        {QStringLiteral("an HTTP client"), EventsOf({"HTTPClient"}), MembersOf({&HTTPClient::staticMetaObject})},
        {QStringLiteral("a resource"), EventsOf({"SerialPort", "DMXUniverse", "IOChannel"}),
         MembersOf(
             {&MScriptSerial::staticMetaObject, &MScriptDMX::staticMetaObject, &MScriptIOChannel::staticMetaObject})},
    };
    return views[static_cast<int>(kind)];
}

MadeObjects::MadeObjects(const ScriptSource& source) {
    if (source.Declares(QStringLiteral("QCalverin")))
        return;
    for (int place = 0; place < source.Count(); ++place)
        LookAt(source, place);
    Unsettle(source);
}

void MadeObjects::LookAt(const ScriptSource& source, int place) {
    if (!source.IsName(place, "QCalverin") || !source.IsSign(place + 1, ".") || !source.IsSign(place + 3, "("))
        return;
    for (const Factory& factory : kFactories) {
        if (!source.IsName(place + 2, factory.name))
            continue;
        Making making{factory.kind, place, 0};
        const bool hasArgument = !source.IsSign(place + 4, ")");
        if (factory.kind == MadeKind::TCP && hasArgument && !source.IsText(place + 4))
            return; // what the argument is, is not known
        if (factory.kind == MadeKind::TCP && hasArgument &&
            source.Words()[static_cast<std::size_t>(place) + 4].text == QLatin1String("udp4"))
            making.kind = MadeKind::UDP;
        const bool isTaken = source.IsSign(place - 1, "=") || source.IsSign(place - 1, "||"); // "c = c || ..."
        if (isTaken && source.IsName(place - 2))
            making.target = place - 2;
        m_makings.push_back(making);
    }
}

/// A name is what it is made, unless it is made something else too.
void MadeObjects::Unsettle(const ScriptSource& source) {
    QHash<int, MadeKind> made;
    for (const Making& making : m_makings)
        if (making.target > 0)
            made.insert(making.target, making.kind);
    QSet<QString> unsure;
    for (int place = 0; place < source.Count(); ++place) {
        if (!source.IsName(place))
            continue;
        const QString& name = source.Words()[static_cast<std::size_t>(place)].text;
        const auto kind = made.constFind(place);
        if (kind != made.constEnd() && m_kinds.value(name, *kind) == *kind)
            m_kinds.insert(name, *kind);
        else if (kind != made.constEnd() || source.IsKey(place) ||
                 (source.IsSign(place + 1, "=") && !IsPlaceholder(source, place + 2)))
            unsure.insert(name);
    }
    for (const SourceFunction& function : source.Functions()) {
        for (const QString& param : function.params)
            unsure.insert(param);
        unsure.insert(function.name);
    }
    for (const QString& name : unsure)
        m_kinds.remove(name);
}

const MadeKind* MadeObjects::KindOf(const QString& name) const {
    const auto kind = m_kinds.constFind(name);
    return kind == m_kinds.constEnd() ? nullptr : &*kind;
}
