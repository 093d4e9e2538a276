// A device for @NAME@.js to talk to, played by the show. Change it along with the driver: what the real device says, it says.

var level = 0;
var device = Counterpart.udp();

device.onDatagram = function (sender, text) {
    if (/^LEVEL \d+$/.test(text) && Number(text.slice(6)) <= 100)
        level = Number(text.slice(6));
    sender.say("LEVEL " + level);
};

// Steps of the show call this: somebody turns the knob.
function turn(to) {
    level = to;
}
