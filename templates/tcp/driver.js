// @NAME@: a device that speaks lines over TCP. Change the lines to those of your device; fake.js plays it.
//
//   POWER ON, POWER OFF, LEVEL 40   are answered with OK, or ERR and a reason
//   STATE                           is answered with STATE ON 40
//   STATE ON 40                     comes unasked when somebody works the device by hand

// @include connection.js

({
    Info: {
        Title: "@NAME@",
        Author: "",
        Version: "0.1",
        Description: "A device on the network",
        Variables: {
            Online: { Type: "Enum", Items: ["no", "yes"] },
            Power: { Type: "Enum", Items: ["off", "on"] },
            Level: { Type: "Integer", MinValue: 0, MaxValue: 100 }
        },
        Setup: {
            host: { Name: "Host", Hint: "address or name" },
            port: { Name: "Port", MinValue: 1, MaxValue: 65535 }
        },
        Commands: {
            SetPower: { Name: "Set power", Params: { power: { Type: "Enum", Items: ["off", "on"] } } },
            SetLevel: { Name: "Set level", Params: { level: { Type: "Integer", MinValue: 0, MaxValue: 100 } } }
        }
    },

    Setup: { host: "127.0.0.1", port: 4001 },
    Device: { Online: "no", Connection: "stopped", Power: "off", Level: 0 },

    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.tcp(this.Setup.host, this.Setup.port),
            framing: Connection.lines("\r\n"),
            status: function (word, reason) {
                driver.Device.Online = word === "online" ? "yes" : "no";
                driver.Device.Connection = reason ? word + ": " + reason : word;
            },
            poll: function () { driver._askState(); },
            frame: function (line) { driver._take(line); }
        });
        this._connection.open();
    },

    _mStop: function () {
        if (this._connection)
            this._connection.close();
    },

    // The result of a command comes with the answer of the device.
    SetPower: function (power) {
        this._do("POWER " + power.toUpperCase());
    },

    SetLevel: function (level) {
        this._do("LEVEL " + level);
    },

    _do: function (line) {
        var driver = this;
        this._connection.command(line, function (answer) {
            if (answer !== "OK")
                throw new Error("the device says " + answer); // the result is "error: the device says ..."
            driver._askState();
            return "OK";
        });
    },

    _askState: function () {
        var driver = this;
        this._connection.ask("STATE", function (answer, problem) {
            if (!problem)
                driver._take(answer);
        });
    },

    _take: function (line) {
        var state = /^STATE (ON|OFF) (\d+)$/.exec(line);
        if (!state)
            return;
        this.Device.Power = state[1].toLowerCase();
        this.Device.Level = Number(state[2]);
    }
})
