// A sound desk by Open Sound Control 1.0 over UDP: names, types and values, each padded to four bytes.
// @include connection.js

(function () {
    function padded(text) {
        do
            text += "\0";
        while (text.length % 4);
        return text;
    }

    function whole(number) {
        return String.fromCharCode((number >>> 24) & 255, (number >>> 16) & 255, (number >>> 8) & 255, number & 255);
    }

    // IEEE 754 single precision, for the numbers that desks use: 0, and 2^-126 and above.
    function real(number) {
        var sign = number < 0 ? 0x80000000 : 0, value = Math.abs(number), exponent, fraction;
        if (value === 0)
            return whole(0);
        exponent = Math.floor(Math.log(value) / Math.LN2);
        fraction = value / Math.pow(2, exponent);
        if (fraction >= 2) {
            fraction /= 2;
            ++exponent;
        } else if (fraction < 1) {
            fraction *= 2;
            --exponent;
        }
        return whole((sign | ((exponent + 127) << 23) | Math.round((fraction - 1) * 0x800000)) >>> 0);
    }

    function message(address, types, values) {
        var bytes = padded(address) + padded("," + types);
        values.forEach(function (value, i) {
            bytes += { i: whole, f: real, s: padded }[types.charAt(i)](value);
        });
        return bytes;
    }

    return {
        Info: {
            Title: "Sound desk",
            Commands: {
                Fader: { Params: { channel: { Type: "Integer" }, level: { Type: "Real", MinValue: 0, MaxValue: 1 } } },
                Mute: { Params: { channel: { Type: "Integer" }, on: { Type: "Enum", Items: ["off", "on"] } } },
                Label: { Params: { channel: { Type: "Integer" }, text: {} } },
                Scene: { Params: { number: { Type: "Integer" } } }
            }
        },
        Setup: { host: "127.0.0.1", port: 9000 },
        Device: { Sent: 0 },

        _mStart: function () {
            this._connection = new Connection({ transport: Connection.udp(this.Setup.host, this.Setup.port) });
            this._connection.open();
        },
        _mStop: function () {
            if (this._connection)
                this._connection.close();
        },

        Fader: function (channel, level) { return this._say("/ch/" + channel + "/fader", "f", [Number(level)]); },
        Mute: function (channel, on) { return this._say("/ch/" + channel + "/mute", "i", [on === "on" ? 1 : 0]); },
        Label: function (channel, text) { return this._say("/ch/" + channel + "/label", "s", [text]); },
        Scene: function (number) { return this._say("/scene", "is", [Number(number), "go"]); },

        _say: function (address, types, values) {
            this._connection.say(message(address, types, values));
            this.Device.Sent = this.Device.Sent + 1;
            return address;
        }
    };
}())
