// The other end of a universe, by packages that others wrote:
//   node counterpart.js sacn-receive UNIVERSE INTERFACE     prints "levels 1 2 3 4" for each packet
//   node counterpart.js sacn-send UNIVERSE INTERFACE TARGET|- LEVEL...
//   node counterpart.js artnet-receive UNIVERSE             prints the same
//   node counterpart.js artnet-send UNIVERSE TARGET LEVEL...
// Packages are looked for where NODE_PATH says. It runs until it is ended.
var words = process.argv.slice(2);
var kind = words.shift();
var universe = Number(words.shift());

function print(levels) {
    console.log("levels " + levels.slice(0, 4).join(" "));
}

function dmxnet() {
    var Dmxnet = require("dmxnet").dmxnet;
    return new Dmxnet({ log: { level: "error" } });
}

function address() {
    return { net: universe >> 8, subnet: universe >> 4 & 15, universe: universe & 15 };
}

var kinds = {
    "sacn-receive": function () {
        var Receiver = require("sacn").Receiver;
        var receiver = new Receiver({ universes: [universe], iface: words[0], reuseAddr: true });
        receiver.on("packet", function (packet) {
            print(Array.from(packet.payloadAsBuffer || []));
        });
    },
    "sacn-send": function () {
        var Sender = require("sacn").Sender;
        var sender = new Sender({
            universe: universe, iface: words[0], reuseAddr: true, minRefreshRate: 10,
            useUnicastDestination: words[1] === "-" ? undefined : words[1]
        });
        var payload = {};
        words.slice(2).forEach(function (level, index) { payload[index + 1] = Number(level); });
        sender.send({ payload: payload, sourceName: "other", priority: 120, useRawDmxValues: true });
    },
    "artnet-receive": function () {
        dmxnet().newReceiver(address()).on("data", print);
    },
    "artnet-send": function () {
        var options = address();
        options.ip = words[0];
        options.base_refresh_interval = 100;
        var sender = dmxnet().newSender(options);
        words.slice(1).forEach(function (level, index) { sender.prepChannel(index, Number(level)); });
        sender.transmit();
    }
};

kinds[kind]();
console.log("ready");
