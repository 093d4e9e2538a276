#include "UnknownNames.h"

namespace {

struct UnknownName {
    const char* name;
    const char* instead;
};

constexpr UnknownName kUnknownNames[] = {
    {"let", "this engine speaks ECMAScript 5.1, which has no \"let\": write \"var\""},
    {"async", "this engine speaks ECMAScript 5.1, which has no \"async\""},
    {"await", "this engine speaks ECMAScript 5.1, which has no \"await\""},
    {"setTimeout", "write \"QCalverin.SetTimeout(function () { ... }, ms)\""},
    {"setInterval", "write \"QCalverin.SetInterval(function () { ... }, ms)\""},
    {"clearTimeout", "write \"QCalverin.ClearTimeout(id)\""},
    {"clearInterval", "write \"QCalverin.ClearInterval(id)\""},
    {"console", "write \"print(text)\" or \"QCalverin.TraceMessage(text, 'INFO')\""},
    {"alert", "write \"print(text)\""},
    {"log", "write \"print(text)\""},
    {"require", "a script is one text and loads no others"},
    {"module", "a script publishes the object that it ends with: \"({ ... })\""},
    {"exports", "a script publishes the object that it ends with: \"({ ... })\""},
    {"fetch", "use \"QCalverin.CreateHTTPClient()\""},
    {"XMLHttpRequest", "use \"QCalverin.CreateHTTPClient()\""},
    {"WebSocket", "use \"QCalverin.CreateSocket('tcp')\" and speak the protocol"},
    {"Promise", "this engine speaks ECMAScript 5.1, which has no promises: give a function that is called later"},
    {"Map", "this engine speaks ECMAScript 5.1, which has no \"Map\": use an object"},
    {"Set", "this engine speaks ECMAScript 5.1, which has no \"Set\": use an object"},
    {"Symbol", "this engine speaks ECMAScript 5.1, which has no symbols"},
    {"Uint8Array", "use \"new Buffer(size)\""},
    {"window", "a script has no window: its global names stand alone"},
    {"document", "a script has no document"},
    {"process", "a script has no process"},
};

} // namespace

QString InsteadOfUnknown(const QString& name) {
    for (const auto& row : kUnknownNames) {
        if (name == QLatin1String(row.name))
            return QString::fromLatin1(row.instead);
    }
    return {};
}
