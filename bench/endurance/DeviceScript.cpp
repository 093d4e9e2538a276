#include "DeviceScript.h"

namespace {

constexpr const char* kScript = R"js(
var udp = QCalverin.CreateSocket("udp4"), tcp = QCalverin.CreateSocket(), http = QCalverin.CreateHTTPClient();
var owed = {}, fetching = [], last = 0, heard = 0, line = "";

function strikes() { return Math.random() < 0.01; }

function owe() {
    var key = String(++last);
    owed[key] = { id: QCalverin.PostponeResult(), timer: QCalverin.SetTimeout(function () { pay(key, "late"); }, 2000) };
    return key;
}

function pay(key, text) {
    if (!owed.hasOwnProperty(key))
        return;
    var debt = owed[key];
    delete owed[key];
    if (text !== "late")
        QCalverin.ClearTimeout(debt.timer);
    QCalverin.SetResult(debt.id, text);
}

function connect() {
    tcp.end();
    tcp.connect(ports.tcp, "127.0.0.1", function () {});
}

udp.on("message", function (bytes) { pay(bytes.toString().split(" ")[0], "datagram"); });
udp.bind(0, "127.0.0.1");
tcp.on("data", function (bytes) {
    var lines = (line + bytes.toString()).split("\n");
    line = lines.pop();
    for (var i = 0; i < lines.length; ++i)
        pay(lines[i].split(" ")[0], "line");
});
tcp.on("error", function () {});
tcp.on("close", function () { QCalverin.SetTimeout(connect, 2500); });
http.on("response", function (response, error) {
    pay(fetching.shift(), error.errorCode === 0 ? "page" : "no page");
});

QCalverin.RegisterGroup("House", true);
QCalverin.OnVariableChange(function (name, value) { heard += Number(value) > 0 ? 1 : 0; });
QCalverin.SetInterval(function () {
    QCalverin.SetValueAsInteger("Level", QCalverin.GetValueAsInteger("Level") + 1);
    if (strikes())
        throw new Error("one tick in a hundred");
}, 100);
QCalverin.SetInterval(function () {
    var bytes = new Buffer(512);
    bytes.fill(7);
    var document = new XMLDocument();
    QCalverin.SetProperty("Panel", "Text", bytes.toString("hex").substr(0, 20) + heard);
    QCalverin.GetObjectList("", 6);
    QCalverin.StartTask("Overture");
}, 1000);

({
    _mStart: function () { connect(); },
    Answer: function (text) {
        if (isFaulty && strikes())
            throw new Error("one answer in a hundred");
        return "" + text;
    },
    Datagram: function () {
        var bytes = new Buffer(owe() + " a datagram there and back");
        udp.send(bytes, 0, bytes.length, ports.udp, "127.0.0.1");
    },
    Line: function () { tcp.write(owe() + " a line there and back\n"); },
    Page: function () {
        fetching.push(owe());
        http.get("http://127.0.0.1:" + ports.http + "/");
    },
    Neighbour: function (name) { return QCalverin.Perform(name, "Answer", "XML", "from a neighbour"); },
    NeighbourLater: function (name) {
        var key = owe();
        QCalverin.PerformAsync(function () { pay(key, "later"); }, name, "Answer", "XML", "from a neighbour");
    }
})
)js";

} // namespace

std::string DeviceScript(const EchoPorts& ports, bool isFaulty) {
    return "var ports = { tcp: " + std::to_string(ports.tcp) + ", udp: " + std::to_string(ports.udp) +
           ", http: " + std::to_string(ports.http) + " }, isFaulty = " + (isFaulty ? "true" : "false") + ";" + kScript;
}
