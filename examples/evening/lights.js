// The light desk of a small house: it fades a level and answers what others ask of it.
({
    level: 0,

    // Fades to a level and says what it did. Other scripts perform it: QCalverin.Perform("lights", ...).
    fadeTo: function (percent) {
        var target = Math.max(0, Math.min(100, Number(percent)));
        var text = "from " + this.level + " to " + target + " %";
        this.level = target;
        QCalverin.SetValue("Light level", String(target));
        return text;
    },

    // A longer piece of work answers later: the command ends when SetResult comes, not when the function returns.
    warmUp: function (milliseconds) {
        var id = QCalverin.PostponeResult();
        QCalverin.SetTimeout(function () { QCalverin.SetResult(id, "warm"); }, Number(milliseconds));
    }
})
