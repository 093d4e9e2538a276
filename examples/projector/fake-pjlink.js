// A projector that speaks PJLink class 1, as far as the driver beside it asks. docs/counterparts.md tells what a counterpart sees.
var warmUp = option("warmUp", 3000), coolDown = option("coolDown", 3000); // ms
var OFF = "0", ON = "1", COOLING = "2", WARMING = "3";
var inputs = ["11", "21", "31", "32"];
var power = OFF, input = "11", picture = false, sound = false, errors = "000000";

var projector = Counterpart.tcp({ lines: "\r" });

projector.onOpen = function (client) { client.say("PJLINK 0\r"); };

projector.onLine = function (client, line) {
    var command = /^%1([A-Za-z0-9]{4}) (.*)$/.exec(line);
    if (!command)
        return;
    var name = command[1].toUpperCase();
    client.say("%1" + name + "=" + (answers[name] ? answers[name](command[2]) : "ERR1") + "\r");
};

// Power goes to where it shall be by a way that takes time.
function go(way, end, ms) {
    power = way;
    after(ms, function () {
        power = end;
        if (end === OFF)
            picture = sound = false;
    });
    return "OK";
}

function told(text) {
    return function (asked) { return asked === "?" ? text : "ERR2"; };
}

var answers = {
    POWR: function (asked) {
        if (asked === "?")
            return power;
        if (asked !== ON && asked !== OFF)
            return "ERR2";
        if (asked === ON)
            return power === COOLING ? "ERR3" : power === OFF ? go(WARMING, ON, warmUp) : "OK";
        return power === WARMING ? "ERR3" : power === ON ? go(COOLING, OFF, coolDown) : "OK";
    },
    INPT: function (asked) {
        if (asked !== "?" && inputs.indexOf(asked) < 0)
            return "ERR2";
        if (power !== ON)
            return "ERR3";
        if (asked === "?")
            return input;
        input = asked;
        return "OK";
    },
    AVMT: function (asked) {
        if (asked !== "?" && !/^[123][01]$/.test(asked))
            return "ERR2";
        if (power !== ON)
            return "ERR3";
        if (asked === "?")
            return picture ? (sound ? "31" : "11") : (sound ? "21" : "30");
        if (asked.charAt(0) !== "2")
            picture = asked.charAt(1) === "1";
        if (asked.charAt(0) !== "1")
            sound = asked.charAt(1) === "1";
        return "OK";
    },
    ERST: function (asked) { return asked === "?" ? errors : "ERR2"; },
    LAMP: function (asked) { return asked === "?" ? "1234 " + (power === ON || power === WARMING ? "1" : "0") : "ERR2"; },
    INST: told(inputs.join(" ")),
    NAME: told(option("name", "Stage")),
    INF1: told("Example"),
    INF2: told("Fake"),
    INFO: told(""),
    CLSS: told("1")
};

// For steps: fan, lamp, temperature, cover, filter, other; 0 fine, 1 warning, 2 error.
function setErrors(digits) { errors = digits; }
