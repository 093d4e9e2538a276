// A lamp with three colours behind a DMX universe. Channels count from 1 here, as on the lamp's own display.
({
    Info: {
        Title: "DMX lamp",
        Author: "House technics",
        Version: "1.0",
        Description: "Red, green and blue on three channels of a universe",
        Variables: { Colour: { Type: "String" } },
        Setup: {
            universe: { Name: "Universe", Widget: "DMXOut" },
            first: { Name: "First channel", Type: "Integer", MinValue: 1, MaxValue: 510 }
        },
        Commands: {
            SetColour: {
                Name: "Set colour",
                Params: {
                    red: { Type: "Integer", MinValue: 0, MaxValue: 255 },
                    green: { Type: "Integer", MinValue: 0, MaxValue: 255 },
                    blue: { Type: "Integer", MinValue: 0, MaxValue: 255 }
                }
            }
        }
    },

    Setup: { universe: '{ "Type":"DMXOut", "ResourceID":1, "ChannelIndex":0 }', first: 1 },
    Device: { Colour: "" },

    _mStart: function () {
        var lamp = this, out = QCalverin.GetResource(this.Setup.universe);
        if (out === undefined)
            throw new Error("choose a universe in the setup");
        out.Open(function () { lamp.Device.Colour = "dark"; });
        this._out = out;
    },

    _mStop: function () { this._out.Close(); },

    SetColour: function (red, green, blue) {
        var levels = new Buffer([Number(red), Number(green), Number(blue)]);
        if (!this._out.WriteBlock(levels, Number(this.Setup.first) - 1))
            throw new Error("the universe is not open");
        this.Device.Colour = levels.toString("hex");
        return this.Device.Colour;
    }
})
