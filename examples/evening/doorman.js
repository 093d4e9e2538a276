// The front of house: it watches the doors and the audience, and works the light desk and a task of the show.
(function () {
    var log = [];

    function note(text) {
        log.push(text);
        QCalverin.SetValue("Last note", text);
    }

    function ask(lightsFunction, parameter) {
        return QCalverin.Perform("lights", "Execute Function With Params", "LIST",
                                 "Script Function Name=" + lightsFunction, "Param1=" + parameter);
    }

    // Variables that the host, the user or another script changes come here, one after the other.
    function changed(name, value) {
        if (name === "Doors" && value === "open")
            note("doors open, house light " + ask("fadeTo", 60));
        if (name === "Doors" && value === "closed") {
            note("doors closed, house light " + ask("fadeTo", 10));
            QCalverin.StartTask("Overture");
        }
        if (name === "Seats taken" && Number(value) === 120)
            note("sold out");
    }

    return {
        _mStart: function () {
            QCalverin.RegisterGroup("House", true);
            QCalverin.OnVariableChange(changed);
        },

        // The result text of the other script's function is this function's result.
        light: function (percent) {
            return "house light " + ask("fadeTo", percent);
        },

        // Does not wait: the note comes when the lamps are warm.
        prepare: function () {
            var code = QCalverin.PerformAsync(function (text) { note("lamps are " + text); },
                "lights", "Execute Function With Params", "LIST", "Script Function Name=warmUp", "Param1=150");
            return code === 21 ? "warming up" : "code " + code;
        },

        overture: function () {
            return QCalverin.GetProperty("Overture", "Status") + ", line " + QCalverin.GetPropertyAsInt("Overture", "Line");
        },

        notes: function () { return log.join("\n"); }
    };
})()
