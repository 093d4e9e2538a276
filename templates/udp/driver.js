// @NAME@: a device that answers datagrams. Change the texts to those of your device; fake.js plays it.
//
//   LEVEL?      is answered with LEVEL 40
//   LEVEL 40    is done, and answered with LEVEL 40

// @include connection.js

({
    Info: {
        Title: "@NAME@",
        Author: "",
        Version: "0.1",
        Description: "A device that is reached by UDP",
        Variables: {
            Online: { Type: "Enum", Items: ["no", "yes"] },
            Level: { Type: "Integer", MinValue: 0, MaxValue: 100 }
        },
        Setup: {
            host: { Name: "Host", Hint: "address or name" },
            port: { Name: "Port", MinValue: 1, MaxValue: 65535 }
        },
        Commands: {
            SetLevel: { Name: "Set level", Params: { level: { Type: "Integer", MinValue: 0, MaxValue: 100 } } }
        }
    },

    Setup: { host: "127.0.0.1", port: 4001 },
    Device: { Online: "no", Connection: "stopped", Level: 0 },

    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.udp(this.Setup.host, this.Setup.port),
            answerTime: 500,
            tries: 3, // a datagram may get lost
            status: function (word, reason) {
                driver.Device.Online = word === "online" ? "yes" : "no";
                driver.Device.Connection = reason ? word + ": " + reason : word;
            },
            poll: function () {
                driver._connection.ask("LEVEL?", function (answer, problem) {
                    if (!problem)
                        driver._take(answer);
                }, { match: driver._isLevel });
            },
            frame: function (text) { driver._take(text); }
        });
        this._connection.open();
    },

    _mStop: function () {
        if (this._connection)
            this._connection.close();
    },

    // The result of a command comes with the answer of the device.
    SetLevel: function (level) {
        var driver = this;
        this._connection.command("LEVEL " + level, function (answer) {
            driver._take(answer);
            if (answer !== "LEVEL " + level)
                throw new Error("the device says " + answer);
            return "OK";
        }, { match: this._isLevel });
    },

    // Over UDP anything may come at any time: only this is an answer.
    _isLevel: function (text) { return /^LEVEL \d+$/.test(text); },

    _take: function (text) {
        if (this._isLevel(text))
            this.Device.Level = Number(text.substr(6));
    }
})
