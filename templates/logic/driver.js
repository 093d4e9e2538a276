// @NAME@: logic between the variables of a show and its devices. When the doors open or close, the light goes up or down, and
// somebody who works the light by hand is noticed. Change names and rules to those of your show.

({
    Info: {
        Title: "@NAME@",
        Author: "",
        Version: "0.1",
        Description: "What follows when something changes",
        Variables: { Automatic: { Type: "Enum", Items: ["no", "yes"] } },
        Setup: {
            group: { Name: "Group", Hint: "of the variables that are listened to" },
            light: { Name: "Light", Hint: "the device that is worked" },
            openLevel: { Name: "Level while open", Type: "Integer", MinValue: 0, MaxValue: 100, Suffix: " %" }
        },
        Commands: {
            SetAutomatic: { Name: "Set automatic", Params: { on: { Type: "Enum", Items: ["no", "yes"] } } }
        }
    },

    Setup: { group: "House", light: "light", openLevel: 60 },
    Device: { Automatic: "yes", Note: "" },

    _mStart: function () {
        var logic = this;
        this._automatic = true;
        QCalverin.RegisterGroup(this.Setup.group, true);
        QCalverin.OnVariableChange(function (name, value) { logic._changed(name, value); });
    },

    _mStop: function () {
        QCalverin.UnregisterGroup(this.Setup.group);
    },

    SetAutomatic: function (on) {
        this._automatic = on === "yes";
        this.Device.Automatic = on;
        return "OK";
    },

    // Every change of a variable of the group comes here, one after the other.
    _changed: function (name, value) {
        if (name === "Doors" && this._automatic)
            this._fade(value === "open" ? this.Setup.openLevel : 0);
    },

    // Does not wait for the light: the answer comes by itself.
    _fade: function (level) {
        var logic = this;
        QCalverin.PerformAsync(function (answer) {
            logic.Device.Note = answer === undefined ? "the light does not answer" : "the light says " + answer;
        }, this.Setup.light, "Fade to", "LIST", "level=" + level);
    }
})
