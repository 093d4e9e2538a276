// A music player by the protocol of the Music Player Daemon: a line is answered with lines up to "OK", or with "ACK" and a reason.
// @include connection.js

({
    Info: {
        Title: "Music player",
        Variables: {
            Online: { Type: "Enum", Items: ["no", "yes"] },
            Random: { Type: "Enum", Items: ["off", "on"] },
            Volume: { Type: "Integer", MinValue: -1, MaxValue: 100 }
        },
        Commands: {
            SetRandom: { Name: "Set random", Params: { random: { Type: "Enum", Items: ["off", "on"] } } },
            SetVolume: { Name: "Set volume", Params: { volume: { Type: "Integer", MinValue: 0, MaxValue: 100 } } },
            PlaySong: { Name: "Play", Params: { song: { Type: "Integer", MinValue: 0, MaxValue: 10000 } } },
            Outputs: { Name: "Outputs" }
        }
    },

    Setup: { host: "127.0.0.1", port: 6600 },
    Device: { Online: "no", Connection: "stopped", Random: "off", Volume: -1, State: "" },

    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.tcp(this.Setup.host, this.Setup.port),
            framing: this._answers(),
            greet: function (answer) { return /^OK MPD /.test(answer) || "no music player"; },
            status: function (word, reason) {
                driver.Device.Online = word === "online" ? "yes" : "no";
                driver.Device.Connection = reason ? word + ": " + reason : word;
            },
            pollTime: 300,
            poll: function () { driver._askState(); }
        });
        this._connection.open();
    },

    _mStop: function () {
        if (this._connection)
            this._connection.close();
    },

    SetRandom: function (random) { this._do("random " + (random === "on" ? 1 : 0)); },
    SetVolume: function (volume) { this._do("setvol " + volume); },
    PlaySong: function (song) { this._do("play " + song); },

    // The names of the outputs, one behind the other.
    Outputs: function () {
        this._connection.command("outputs", function (answer) {
            return (answer.match(/outputname: .*/g) || []).map(function (line) { return line.substr(12); }).join(",");
        });
    },

    _do: function (line) {
        var driver = this;
        this._connection.command(line, function (answer) {
            if (answer.substr(0, 3) === "ACK")
                throw new Error(answer.replace(/^ACK \[.*?\] \{.*?\} /, ""));
            driver._askState();
            return "OK";
        });
    },

    _askState: function () {
        var driver = this;
        this._connection.ask("status", function (answer, problem) {
            if (problem)
                return;
            driver._take(answer, /^random: (.*)$/m, function (value) { driver.Device.Random = value === "1" ? "on" : "off"; });
            driver._take(answer, /^volume: (.*)$/m, function (value) { driver.Device.Volume = Number(value); });
            driver._take(answer, /^state: (.*)$/m, function (value) { driver.Device.State = value; });
        });
    },

    _take: function (answer, line, use) {
        var found = line.exec(answer);
        if (found)
            use(found[1]);
    },

    // A frame is an answer: all its lines.
    _answers: function () {
        var lines = [], rest = "";
        return {
            encode: function (line) { return line + "\n"; },
            reset: function () { lines = []; rest = ""; },
            feed: function (bytes, frame) {
                var pieces = (rest + bytes).split("\n");
                rest = pieces.pop();
                pieces.forEach(function (line) {
                    lines.push(line);
                    if (/^(OK|ACK)/.test(line))
                        frame(lines.splice(0).join("\n"));
                });
            }
        };
    }
})
