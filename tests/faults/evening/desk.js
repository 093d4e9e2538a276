// Uses all that takes threads, descriptors and memory: timers, a line, datagrams to itself, a page, a file, other devices.
var udp = QCalverin.CreateSocket("udp4"), tcp = QCalverin.CreateSocket(), http = QCalverin.CreateHTTPClient();
var waiting = 0, port = 0, received = "";

function answer(text) {
    var id = waiting;
    waiting = 0;
    if (id !== 0)
        QCalverin.SetResult(id, text);
}

// Every answer has its time, since what it waits for may be the very thing that fails.
function owe() {
    waiting = QCalverin.PostponeResult();
    var id = waiting;
    QCalverin.SetTimeout(function () {
        if (waiting === id)
            answer("error: no answer");
    }, 1000);
}

udp.on("message", function (bytes) { answer(bytes.toString()); });
tcp.on("data", function (bytes) {
    received += bytes.toString();
    if (received.indexOf("\n") >= 0)
        answer(received.split("\n")[0]);
});
tcp.on("error", function (error) { answer("error: " + error.errorText); });
http.on("response", function (response, error) {
    answer(error.errorCode === 0 ? "page " + response.statusCode : "error: " + error.errorText);
});

({
    _mStart: function () {
        port = QCalverin.GetValueAsInteger("Port");
        udp.bind(0, "127.0.0.1");
    },
    Tick: function () {
        owe();
        var left = 3;
        var timer = QCalverin.SetInterval(function () {
            if (--left === 0) {
                QCalverin.ClearInterval(timer);
                answer("ticked");
            }
        }, 5);
    },
    Datagram: function () {
        owe();
        udp.send(new Buffer("a datagram"), 0, 10, udp.address().port, "127.0.0.1");
    },
    Line: function () {
        owe();
        received = "";
        tcp.end();
        tcp.connect(port, "127.0.0.1", function () { tcp.write("a line there and back\n"); });
    },
    Page: function () {
        owe();
        http.get("http://127.0.0.1:" + port + "/page");
    },
    Keep: function (file) {
        owe();
        http.downloadFile("http://127.0.0.1:" + port + "/file", "", file);
    },
    Bytes: function () {
        var bytes = new Buffer(3000);
        bytes.fill(65);
        var document = new XMLDocument(), sum = new Checksum();
        document.Parse("<a><b c='d'>e</b></a>");
        sum.Init("Crc16", 2, false, true);
        return bytes.toString("hex").length + document.DocumentElement().ToString() + sum.ComputeChecksum("123456789");
    },
    Neighbour: function () {
        return QCalverin.Perform("lamp", "Fade to", "LIST", "level=40");
    },
    Later: function () {
        owe();
        QCalverin.PerformAsync(function (text) { answer("later " + text); }, "lamp", "Fade to", "LIST", "level=50");
    },
    Show: function () {
        QCalverin.SetValue("Note", "from the desk");
        QCalverin.RegisterGroup("Stage", true);
        QCalverin.OnVariableChange(function () {});
        return QCalverin.GetProperty("Opening", "Status") + QCalverin.GetObjectList("", 6).length +
            QCalverin.GetObject("lamp", 1).length + QCalverin.StartTask("Opening");
    }
})
