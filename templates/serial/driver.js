// @NAME@: a device on a serial line, with frames between STX and ETX. Change them to those of your device; fake.js plays it.
//
//   IN 3   is answered with OK
//   IN?    is answered with IN 3

// @include connection.js

({
    Info: {
        Title: "@NAME@",
        Author: "",
        Version: "0.1",
        Description: "A device on a serial line",
        Variables: {
            Online: { Type: "Enum", Items: ["no", "yes"] },
            Input: { Type: "Integer", MinValue: 1, MaxValue: 8 }
        },
        Setup: {
            line: { Name: "Line", Widget: "Serial" },
            baud: { Name: "Baud rate", Type: "Enum", Items: ["9600", "19200", "38400", "57600", "115200"] }
        },
        Commands: {
            SelectInput: { Name: "Select input", Params: { input: { Type: "Integer", MinValue: 1, MaxValue: 8 } } }
        }
    },

    Setup: { line: '{ "Type":"Serial", "ResourceID":1, "ChannelIndex":0 }', baud: "9600" },
    Device: { Online: "no", Connection: "stopped", Input: 1 },

    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.serial(this.Setup.line, { baud: this._baudRate(), parity: "None" }),
            framing: Connection.delimited("\x03", "\x02"),
            status: function (word, reason) {
                driver.Device.Online = word === "online" ? "yes" : "no";
                driver.Device.Connection = reason ? word + ": " + reason : word;
            },
            poll: function () { driver._askInput(); },
            frame: function (text) { driver._take(text); }
        });
        this._connection.open();
    },

    _mStop: function () {
        if (this._connection)
            this._connection.close();
    },

    // The result of a command comes with the answer of the device.
    SelectInput: function (input) {
        var driver = this;
        this._connection.command("IN " + input, function (answer) {
            if (answer !== "OK")
                throw new Error("the device says " + answer);
            driver._askInput();
            return "OK";
        });
    },

    _askInput: function () {
        var driver = this;
        this._connection.ask("IN?", function (answer, problem) {
            if (!problem)
                driver._take(answer);
        });
    },

    _take: function (text) {
        var input = /^IN ([1-8])$/.exec(text);
        if (input)
            this.Device.Input = Number(input[1]);
    },

    // A setting of the type Enum comes as the index of its item.
    _baudRate: function () {
        return Number(this.Info.Setup.baud.Items[this.Setup.baud]);
    }
})
