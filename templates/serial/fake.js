// A device for @NAME@.js to talk to, played by the show. Change it along with the driver: what the real device says, it says.

var input = 1;
var device = Counterpart.serial({ start: "\x02", lines: "\x03" });

device.onLine = function (line, text) {
    line.say("\x02" + answer(text) + "\x03");
};

function answer(text) {
    if (text === "IN?")
        return "IN " + input;
    if (!/^IN [1-8]$/.test(text))
        return "ERR what is " + text;
    input = Number(text.slice(3));
    return "OK";
}

// Steps of the show call this: somebody presses a key.
function press(key) {
    input = key;
}
