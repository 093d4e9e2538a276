// @NAME@: a device that speaks HTTP and JSON. Change paths and members to those of your device; fake.js plays it.
//
//   GET /state   gives {"power": "on", "level": 40}
//   PUT /state   with such an object, or a part of it, sets it and gives all of it

// @include connection.js

({
    Info: {
        Title: "@NAME@",
        Author: "",
        Version: "0.1",
        Description: "A device with a web interface",
        Variables: {
            Online: { Type: "Enum", Items: ["no", "yes"] },
            Power: { Type: "Enum", Items: ["off", "on"] },
            Level: { Type: "Integer", MinValue: 0, MaxValue: 100 }
        },
        Setup: {
            address: { Name: "Address", Hint: "http://HOST:PORT" },
            user: { Name: "User" },
            password: { Name: "Password" }
        },
        Commands: {
            SetPower: { Name: "Set power", Params: { power: { Type: "Enum", Items: ["off", "on"] } } },
            SetLevel: { Name: "Set level", Params: { level: { Type: "Integer", MinValue: 0, MaxValue: 100 } } }
        }
    },

    Setup: { address: "http://127.0.0.1:8080", user: "", password: "" },
    Device: { Online: "no", Connection: "stopped", Power: "off", Level: 0 },

    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.http(this.Setup.address, this.Setup.user, this.Setup.password),
            status: function (word, reason) {
                driver.Device.Online = word === "online" ? "yes" : "no";
                driver.Device.Connection = reason ? word + ": " + reason : word;
            },
            poll: function () {
                driver._connection.ask("/state", function (answer, problem) {
                    if (!problem)
                        driver._take(answer);
                });
            }
        });
        this._connection.open();
    },

    _mStop: function () {
        if (this._connection)
            this._connection.close();
    },

    // The result of a command comes with the answer of the device.
    SetPower: function (power) { this._put({ power: power }); },
    SetLevel: function (level) { this._put({ level: Number(level) }); },

    _put: function (change) {
        var driver = this;
        var request = { method: "PUT", path: "/state", body: JSON.stringify(change) };
        this._connection.command(request, function (answer) {
            driver._take(answer);
            return "OK";
        });
    },

    _take: function (answer) {
        var state = JSON.parse(answer.text); // throws where it is none: the command fails with that
        this.Device.Power = state.power === "on" ? "on" : "off";
        this.Device.Level = Number(state.level);
    }
})
