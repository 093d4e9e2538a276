// A light for @NAME@.js to work.

({
    Info: {
        Title: "Fake light",
        Variables: { Level: { Type: "Integer", MinValue: 0, MaxValue: 100 } },
        Commands: { FadeTo: { Name: "Fade to", Params: { level: { Type: "Integer", MinValue: 0, MaxValue: 100 } } } }
    },
    Device: { Level: 0 },

    FadeTo: function (level) {
        this.Device.Level = Number(level);
        return level + " %";
    }
})
