// A device for @NAME@.js to talk to, played by the show. Change it along with the driver: what the real device says, it says.

var state = { power: "off", level: 0 };
var device = Counterpart.tcp({ frame: requestLength });

// A request ends with an empty line, and with the body whose length one of its lines tells.
function requestLength(bytes) {
    var head = bytes.indexOf("\r\n\r\n") + 4;
    var body = /\r\ncontent-length: *(\d+)/i.exec(bytes.slice(0, head));
    return head < 4 ? 0 : head + (body ? Number(body[1]) : 0);
}

device.onFrame = function (client, request) {
    var words = request.split(" "); // "PUT /state HTTP/1.1" and so on
    var status = words[1] !== "/state" ? "404 Not Found"
        : words[0] === "PUT" && !take(request.slice(request.indexOf("\r\n\r\n"))) ? "400 Bad Request" : "200 OK";
    var body = JSON.stringify(state);
    client.say("HTTP/1.1 " + status + "\r\nContent-Type: application/json\r\nContent-Length: " + body.length + "\r\n\r\n" + body);
};

// Takes over a part of the state. Gives whether it could be.
function take(text) {
    try {
        var change = JSON.parse(text), key;
        for (key in change)
            if (!isValue[key] || !isValue[key](change[key]))
                return false;
        for (key in change)
            state[key] = change[key];
        return true;
    } catch (noJson) {
        return false;
    }
}

var isValue = {
    power: function (value) { return value === "on" || value === "off"; },
    level: function (value) { return value === Math.floor(value) && value >= 0 && value <= 100; }
};

// Steps of the show call this: somebody turns the knob.
function turn(to) {
    state.level = to;
}
