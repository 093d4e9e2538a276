// A driver in its final form, to copy: a dimmer behind a controller. The last value of the script is an object; what it holds is
// what the device offers. Names that begin with "_" stay inside.

({
    // What people see. None of it is needed; without it every parameter is a text.
    Info: {
        Title: "Dimmer",
        Author: "House technics",
        Version: "1.0",
        Description: "One dimmer with a level, a mode and a fade",

        Variables: {
            Level: { Type: "Integer", MinValue: 0, MaxValue: 100 },
            Mode: { Type: "Enum", Items: ["manual", "show"] },
            Note: { Type: "String", MaxLength: 60 }
        },
        Setup: {
            address: { Name: "Address", Hint: "of the controller" },
            channel: { Name: "Channel", Type: "Integer", MinValue: 1, MaxValue: 512 },
            fadeTime: { Name: "Fade time", Type: "Integer", Suffix: " s", MinValue: 0, MaxValue: 60 }
        },
        Commands: {
            FadeTo: {
                Name: "Fade to",
                GroupName: "Light",
                Params: {
                    level: { Type: "Integer", MinValue: 0, MaxValue: 100 },
                    seconds: { Type: "Integer", MinValue: 0, MaxValue: 60 }
                }
            },
            Blackout: { GroupName: "Light" },
            SetMode: { Name: "Set mode", Params: { mode: { Type: "Enum", Items: ["manual", "show"] } } }
        }
    },

    // Settings with their first values. What the user enters stands here before _mStart is called.
    Setup: { address: "127.0.0.1", channel: 1, fadeTime: 2 },

    // Variables of the device: writing tells the host at once, reading asks it.
    Device: { Level: 0, Mode: "manual", Note: "" },

    // Called when the device starts, and when the script is loaded again.
    _mStart: function () {
        this._say("ready at " + this.Setup.address + ", channel " + this.Setup.channel);
    },

    // Called before the device stops.
    _mStop: function () {
        this._say("stopped");
    },

    // Commands get texts; what they return goes to "Result".
    FadeTo: function (level, seconds) {
        var time = seconds === "0" ? this.Setup.fadeTime : Number(seconds);
        return this._go(Number(level), time);
    },

    Blackout: function () {
        return this._go(0, 0);
    },

    // An enumeration comes as the text of its item.
    SetMode: function (mode) {
        this.Device.Mode = mode;
        return "mode " + mode;
    },

    _go: function (level, seconds) {
        var from = this.Device.Level;
        this.Device.Level = level;
        return this._say("channel " + this.Setup.channel + " from " + from + " to " + level + " % in " + seconds + " s");
    },

    _say: function (text) {
        this.Device.Note = text;
        return text;
    }
})
