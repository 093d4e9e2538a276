// A device for @NAME@.js to talk to, played by the show. Change it along with the driver: what the real device says, it says.

var power = "OFF", level = 0;
var device = Counterpart.tcp({ lines: "\r\n" });

device.onLine = function (client, line) {
    client.say(answer(line) + "\r\n");
};

function answer(line) {
    if (line === "STATE")
        return state();
    if (/^POWER (ON|OFF)$/.test(line)) {
        power = line.slice(6);
        return "OK";
    }
    if (/^LEVEL \d+$/.test(line) && Number(line.slice(6)) <= 100) {
        level = Number(line.slice(6));
        return "OK";
    }
    return "ERR what is " + line;
}

function state() {
    return "STATE " + power + " " + level;
}

// Steps of the show call this: somebody turns the knob, and all who are connected hear of it.
function turn(to) {
    level = to;
    device.say(state() + "\r\n");
}
