// A driver with a setup, a variable and a command.
({
    Info: {
        Title: "Lamp",
        Variables: { Level: { Type: "Integer", MinValue: 0, MaxValue: 100 } },
        Setup: { channel: { Type: "Integer", MinValue: 1, MaxValue: 512 } },
        Commands: { FadeTo: { Name: "Fade to", Params: { level: { Type: "Integer", MinValue: 0, MaxValue: 100 } } } }
    },
    Setup: { channel: 1 },
    Device: { Level: 0 },
    FadeTo: function (level) {
        this.Device.Level = Number(level);
        return "channel " + this.Setup.channel + " at " + level;
    }
})
