#include "Declarations.h"

#include <algorithm>

#include <QMap>
#include <QMetaMethod>
#include <QRegularExpression>

#include "ByteArrayPrototype.h"
#include "Checksum.h"
#include "HTTPClient.h"
#include "MScriptDMX.h"
#include "MScriptIOChannel.h"
#include "MScriptMngRemote.h"
#include "MScriptSerial.h"
#include "MScriptUDP.h"
#include "ScriptCalls.h"
#include "ScriptClasses.h"
#include "ScriptEvents.h"
#include "TCPClient.h"
#include "XMLDocument.h"
#include "XMLElement.h"

namespace {

/// What the script engine's own types stand for. Any text may be given as a number too: it is converted.
struct NativeType {
    const char* native;
    const char* given;
    const char* got;
};

constexpr NativeType kNativeTypes[] = {
    {"QString", "Text", "string"},  {"int", "number", "number"},    {"uint", "number", "number"},
    {"ushort", "number", "number"}, {"double", "number", "number"}, {"bool", "boolean", "boolean"},
    {"void", "void", "void"},
};

/// Where a method takes or gives any value: OBJECT.METHOD.PARAMETER, or OBJECT.METHOD for the result.
struct LooseType {
    const char* place;
    const char* type;
};

constexpr LooseType kLooseTypes[] = {
    {"QCalverin.OnVariableChange.expression", "(name: string, value: string) => void"},
    {"QCalverin.PerformAsync.expression", "(text?: string) => void"},
    {"QCalverin.SetInterval.expression", "() => void"},
    {"QCalverin.SetTimeout.expression", "() => void"},
    {"QCalverin.EnumStringToIndex.Items", "string[]"},
    {"QCalverin.CreateSocket", "TCPClient"},
    {"QCalverin.CreateHTTPClient", "HTTPClient"},
    {"QCalverin.GetResource.svSignature", "string | ResourceSignature"},
    {"QCalverin.GetResource", "any"},
    {"TCPClient.write.svData", "string | Buffer"},
    {"TCPClient.connect.svConnectListener", "(client: TCPClient) => void"},
    {"TCPClient.address", "SocketAddress"},
    {"UDPObject.send.svData", "Buffer"},
    {"UDPObject.address", "SocketAddress"},
    {"HTTPClient.post.params", "string | Buffer"},
    {"HTTPClient.put.params", "string | Buffer"},
    {"SerialPort.Write.svData", "string | Buffer"},
    {"SerialPort.Open.svOpenListener", "(port: SerialPort) => void"},
    {"SerialPort.Close.svCloseListener", "(port: SerialPort) => void"},
    {"DMXUniverse.WriteBlock.svData", "Buffer"},
    {"DMXUniverse.ReadBlock", "Buffer | undefined"},
    {"DMXUniverse.Open.svOpenListener", "(universe: DMXUniverse) => void"},
    {"DMXUniverse.Close.svCloseListener", "(universe: DMXUniverse) => void"},
    {"IOChannel.Open.svOpenListener", "(channel: IOChannel) => void"},
    {"IOChannel.Close.svCloseListener", "(channel: IOChannel) => void"},
    {"Buffer.valueOf", "any"},
    {"Buffer.toString", "string"},
    {"Buffer.copy.svTargetBuffer", "Buffer"},
    {"Buffer.write", "number"},
    {"Buffer.concat.svList", "Buffer[]"},
    {"Buffer.concat", "Buffer"},
    {"Buffer.fill.svValue", "number | string"},
    {"Buffer.left", "Buffer"},
    {"Buffer.middle", "Buffer"},
    {"Buffer.right", "Buffer"},
    {"Checksum.UpdateChecksumToCompute.svData", "string | Buffer"},
    {"Checksum.GetComputedChecksum", "Buffer"},
    {"Checksum.ComputeChecksum.svData", "string | Buffer"},
    {"Checksum.ComputeChecksum", "Buffer"},
    {"XMLDocument.DocumentElement", "XMLElement"},
    {"XMLDocument.CreateElement", "XMLElement"},
    {"XMLDocument.AppendChild.newChild", "XMLElement"},
    {"XMLElement.FirstChildElement", "XMLElement"},
    {"XMLElement.NextSiblingElement", "XMLElement"},
    {"XMLElement.AppendChild.newChild", "XMLElement"},
};

struct DeclaredObject {
    const char* name;
    const QMetaObject* meta;
    const char* further; ///< lines beside the methods
};

const DeclaredObject kObjects[] = {
    {"QCalverin", &MScriptMngRemote::staticMetaObject, "    CreateSocket(type: \"udp4\"): UDPObject;\n"},
    {"TCPClient", &TCPClient::staticMetaObject, ""},
    {"UDPObject", &MScriptUDP::staticMetaObject, ""},
    {"HTTPClient", &HTTPClient::staticMetaObject, ""},
    {"SerialPort", &MScriptSerial::staticMetaObject, ""},
    {"DMXUniverse", &MScriptDMX::staticMetaObject, ""},
    {"IOChannel", &MScriptIOChannel::staticMetaObject, ""},
    {"Buffer", &ByteArrayPrototype::staticMetaObject, "    length: number;\n    [index: number]: number;\n"},
    {"Checksum", &Checksum::staticMetaObject, ""},
    {"XMLDocument", &XMLDocument::staticMetaObject, ""},
    {"XMLElement", &XMLElement::staticMetaObject, ""},
};

/// How objects of a class are made; the others take nothing.
struct Constructor {
    const char* name;
    const char* given;
};

constexpr Constructor kConstructors[] = {
    {"Buffer", "source: Buffer | number[] | number"},
    {"Buffer", "text: string, encoding?: \"utf8\" | \"ascii\" | \"base64\" | \"hex\""},
    {"Checksum", ""},
    {"XMLDocument", ""},
};

constexpr const char* kBeginning =
    R"(// What a script of a device sees beside ECMAScript 5.1. Made by "stagehost declarations".
// In an editor: put this file beside the script, with a jsconfig.json of { "compilerOptions": { "lib": ["es5"], "checkJs": true } }.

/** Numbers and truth values become texts by themselves. */
type Text = string | number | boolean;
interface NetworkError { errorCode: number; errorText: string; }
interface SocketAddress { port: number; family: string; address: string; }
/** The two bytes of the port come exchanged. */
interface Sender { port: number; address: string; }
interface HTTPResponse { data: Buffer; statusCode: number; headers: string; }
interface ResourceSignature { Type: string; ResourceID: number; ChannelIndex?: number; }

/** Writes a line to the standard output of the host's process. */
declare function print(...values: any[]): void;
/** Collects what the script has dropped. */
declare function gc(): void;
/** The engine's version. */
declare function version(): number;
)";

/// All forms of a method as one: the longest, with the count of arguments that must be there.
struct Method {
    QMetaMethod longest;
    int fewest = 0;
};

QMap<QString, Method> MethodsOf(const QMetaObject& meta) {
    QMap<QString, Method> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const QString name = QString::fromLatin1(method.name());
        if (method.methodType() == QMetaMethod::Signal || method.access() != QMetaMethod::Public)
            continue;
        const auto known = methods.find(name);
        if (known == methods.end()) {
            methods.insert(name, {method, method.parameterCount()});
            continue;
        }
        known->fewest = std::min(known->fewest, method.parameterCount());
        if (method.parameterCount() > known->longest.parameterCount())
            known->longest = method;
    }
    return methods;
}

/// The name of a parameter without what the code says of its type: "sTaskName" is "taskName".
QString PlainName(const QByteArray& name) {
    static const QRegularExpression prefix(QStringLiteral("^_?(?:sv|ui|un|s|i|b|n)(?=[A-Z])"));
    static const QRegularExpression capitals(QStringLiteral("^[A-Z]+(?![a-z])|^[A-Z]"));
    const QString plain = QString::fromLatin1(name).remove(prefix);
    const int count = capitals.match(plain).capturedLength();
    return plain.left(count).toLower() + plain.mid(count);
}

/// @param isGiven whether the script gives the value, or gets it.
QString TypeOf(const QByteArray& native, const QString& place, bool isGiven) {
    for (const NativeType& type : kNativeTypes) {
        if (native == type.native)
            return QLatin1String(isGiven ? type.given : type.got);
    }
    for (const LooseType& type : kLooseTypes) {
        if (place == QLatin1String(type.place))
            return QLatin1String(type.type);
    }
    return QStringLiteral("unknown");
}

QString Declaration(const QString& object, const QString& name, const Method& method) {
    const QList<QByteArray> names = method.longest.parameterNames();
    const QList<QByteArray> types = method.longest.parameterTypes();
    const QString place = object + QLatin1Char('.') + name;
    QStringList parameters;
    for (int i = 0; i < names.size(); ++i)
        parameters += PlainName(names.at(i)) + QLatin1String(i < method.fewest ? ": " : "?: ") +
                      TypeOf(types.at(i), place + QLatin1Char('.') + QString::fromLatin1(names.at(i)), true);
    return QStringLiteral("    %1(%2): %3;\n")
        .arg(name, parameters.join(QStringLiteral(", ")), TypeOf(method.longest.typeName(), place, false));
}

/// A listener for each event that the object raises, since each gets something else.
QString Listeners(const QString& object, const QString& name) {
    QString text;
    for (const ScriptEvent& event : kScriptEvents) {
        if (object != QLatin1String(event.object))
            continue;
        QString values = QLatin1String(event.values);
        values += QLatin1String(values.isEmpty() ? "" : ", ") + QStringLiteral("sender: ") + object;
        text += QStringLiteral("    %1(event: \"%2\", listener: (%3) => void): void;\n")
                    .arg(name, QLatin1String(event.name), values);
    }
    return text;
}

QString Explanation(const QString& name) {
    for (const ScriptCall& call : kScriptCalls) {
        if (QStringLiteral("QCalverin.") + name == QLatin1String(call.name))
            return QStringLiteral("    /** %1 */\n").arg(QLatin1String(call.signature));
    }
    return {};
}

QString Members(const DeclaredObject& object) {
    const QString owner = QLatin1String(object.name);
    const auto methods = MethodsOf(*object.meta);
    QString text = QLatin1String(object.further);
    for (auto method = methods.begin(); method != methods.end(); ++method) {
        if (owner == QLatin1String("QCalverin"))
            text += Explanation(method.key());
        text += method.key().toLower() == QLatin1String("on") ? Listeners(owner, method.key())
                                                              : Declaration(owner, method.key(), *method);
    }
    return text;
}

QString Constructors(const QString& name) {
    QString text;
    for (const Constructor& constructor : kConstructors) {
        if (name == QLatin1String(constructor.name))
            text += QStringLiteral("    new (%1): %2;\n    (%1): %2;\n").arg(QLatin1String(constructor.given), name);
    }
    return QStringLiteral("declare var %1: {\n%2};\n").arg(name, text);
}

} // namespace

QByteArray ScriptDeclarations() {
    QString text = QLatin1String(kBeginning);
    for (const DeclaredObject& object : kObjects) {
        const bool isOne = object.meta == &MScriptMngRemote::staticMetaObject;
        text += QStringLiteral("\n%1 %2 {\n%3}\n")
                    .arg(isOne ? QStringLiteral("declare var QCalverin:") : QStringLiteral("interface"),
                         isOne ? QString() : QLatin1String(object.name), Members(object));
    }
    text.replace(QStringLiteral("QCalverin:  {"), QStringLiteral("QCalverin: {"));
    for (const ScriptClass& made : kScriptClasses)
        text += QLatin1Char('\n') + Constructors(QLatin1String(made.name));
    return text.toUtf8();
}
