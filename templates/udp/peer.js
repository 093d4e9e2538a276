// The other end of @NAME@.js: a device that answers datagrams.

({
    Info: { Title: "Fake @NAME@", Setup: { port: { MinValue: 1, MaxValue: 65535 } } },
    Setup: { port: @PORT@ },
    Device: { Level: 0 },

    _mStart: function () {
        var peer = this, socket = QCalverin.CreateSocket("udp4");
        socket.on("message", function (bytes, from) {
            var port = (from.port & 255) * 256 + (from.port >> 8); // its two bytes come exchanged
            var level = /^LEVEL (\d{1,3})$/.exec(bytes.toString());
            if (level && Number(level[1]) <= 100)
                peer.Device.Level = Number(level[1]);
            var answer = new Buffer("LEVEL " + peer.Device.Level);
            socket.send(answer, 0, answer.length, port, from.address);
        });
        socket.bind(Number(this.Setup.port), "127.0.0.1");
    }
})
