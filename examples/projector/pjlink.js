// A projector by the open PJLink protocol, class 1 (JBMIA, "PJLink Specifications Version 1.04").
(function () {
    var POWER = ["off", "on", "cooling", "warming up"];
    var INPUT_KINDS = ["RGB", "Video", "Digital", "Storage", "Network"];
    var MUTED = { "30": "nothing", "11": "picture", "21": "sound", "31": "all" };
    var MUTE = {
        "picture on": "11", "picture off": "10", "sound on": "21", "sound off": "20", "all on": "31", "all off": "30"
    };
    var ERROR_SOURCES = ["fan", "lamp", "temperature", "cover", "filter", "other"];
    var ERROR_LEVELS = ["", "warning", "error"];
    var REFUSALS = {
        ERR1: "the projector does not know that",
        ERR2: "the projector has no such value",
        ERR3: "the projector cannot do that now",
        ERR4: "the projector has failed"
    };
    var ANSWER_TIME = 3000;   // ms for a connect, the greeting, each answer
    var COMMAND_TIME = 5000;  // ms from a command to its result, whatever happens
    var SHORTEST_POLL = 200;  // ms
    var MOST_WAITING = 16;    // commands
    var LONGEST_LINE = 200;   // bytes; the protocol's longest has 136

    var driver;               // the published object
    var reported = {};        // what the variables were last set to
    var socket = null;
    var state = "down";       // "down", "connecting", "greeting" or "ready"
    var received = "";        // bytes of a line that has not come to its end
    var digest = "";          // goes in front of the next line
    var waiting = [];         // requests: { line, poll, over, done(answer, problem) }
    var current = null;       // the request that has been sent
    var watch = 0;            // timer: what runs must end in ANSWER_TIME
    var next = 0;             // timer: the next poll or connect

    function report(name, value) {
        if (reported[name] === value)
            return;
        reported[name] = value;
        driver.Device[name] = value;
    }

    function clear(timer) {
        if (timer)
            QCalverin.ClearTimeout(timer);
        return 0;
    }

    function pollTime() {
        var time = Number(driver.Setup.poll);
        return time >= SHORTEST_POLL ? time : SHORTEST_POLL;
    }

    // ---- MD5 (RFC 1321) of a text of bytes, as 32 hexadecimal digits

    function md5(text) {
        var SHIFTS = [[7, 12, 17, 22], [5, 9, 14, 20], [4, 11, 16, 23], [6, 10, 15, 21]];
        var words = [], sums = [0x67452301, 0xEFCDAB89 | 0, 0x98BADCFE | 0, 0x10325476];
        var blocks = ((text.length + 8) >> 6) + 1, i, block;

        function rounds(first) {
            var a = sums[0], b = sums[1], c = sums[2], d = sums[3];
            for (var step = 0; step < 64; ++step) {
                var round = step >> 4;
                var mixed = [(b & c) | (~b & d), (b & d) | (c & ~d), b ^ c ^ d, c ^ (b | ~d)][round];
                var word = words[first + [step, 5 * step + 1, 3 * step + 5, 7 * step][round] % 16];
                var sine = Math.floor(Math.abs(Math.sin(step + 1)) * 4294967296);
                var sum = (a + mixed + word + sine) | 0, shift = SHIFTS[round][step % 4];
                a = d;
                d = c;
                c = b;
                b = (b + ((sum << shift) | (sum >>> (32 - shift)))) | 0;
            }
            sums = [(sums[0] + a) | 0, (sums[1] + b) | 0, (sums[2] + c) | 0, (sums[3] + d) | 0];
        }

        for (i = 0; i < blocks * 16; ++i)
            words[i] = 0;
        for (i = 0; i < text.length; ++i)
            words[i >> 2] |= (text.charCodeAt(i) & 255) << (i % 4 * 8);
        words[i >> 2] |= 128 << (i % 4 * 8);
        words[blocks * 16 - 2] = text.length * 8;
        for (block = 0; block < blocks; ++block)
            rounds(block * 16);

        var hex = "";
        for (i = 0; i < 16; ++i)
            hex += (256 + ((sums[i >> 2] >> (i % 4 * 8)) & 255)).toString(16).substr(1);
        return hex;
    }

    // ---- The connection

    function connect() {
        next = clear(next);
        state = "connecting";
        expectSomething("cannot connect");
        socket.connect(Number(driver.Setup.port), String(driver.Setup.host));
    }

    function expectSomething(problem) {
        clear(watch);
        watch = QCalverin.SetTimeout(function () {
            watch = 0;
            drop(problem);
        }, ANSWER_TIME);
    }

    // Ends the connection, tells why, and tries again later. The "close" that end() brings finds the state "down". The
    // command that was on its way is sent once more then: all commands say what shall be, so none can be done twice.
    function drop(problem) {
        if (state === "down")
            return;
        state = "down";
        if (current && !current.over)
            waiting.unshift(current);
        current = null;
        received = digest = "";
        watch = clear(watch);
        clear(next);
        waiting = waiting.filter(function (request) { return !request.poll; });
        socket.end();
        report("Online", "no");
        report("Power", "unknown");
        report("Connection", problem);
        next = QCalverin.SetTimeout(connect, pollTime());
    }

    // As drop, when waiting would help no command.
    function refuse(problem) {
        var hopeless;
        drop(problem);
        hopeless = waiting;
        waiting = [];
        hopeless.forEach(function (request) { request.done(null, problem); });
    }

    function onConnect() {
        if (state !== "connecting")
            return;
        state = "greeting";
        received = "";
        expectSomething("no greeting");
    }

    function onClose() {
        if (state !== "connecting")
            drop("connection closed");
    }

    function onError(error) {
        drop(error.errorText || "connection failed");
    }

    // Lines come in pieces and several at a time.
    function onData(bytes) {
        for (var i = 0; i < bytes.length && (state === "greeting" || state === "ready"); ++i) {
            if (bytes[i] === 13) {
                var line = received;
                received = "";
                onLine(line);
            } else if (received.length < LONGEST_LINE) {
                received += String.fromCharCode(bytes[i]);
            } else {
                drop("not a PJLink projector");
            }
        }
    }

    function onLine(line) {
        if (line.substr(0, 11).toUpperCase() === "PJLINK ERRA")
            refuse("password refused");
        else if (state === "greeting")
            onGreeting(line);
        else if (current && line.substr(0, 7) === current.line.substr(0, 6) + "=")
            onAnswer(line.substr(7));
    }

    function onGreeting(line) {
        var secured = /^PJLINK 1 ([0-9A-Fa-f]{8})$/.exec(line);
        if (!secured && line !== "PJLINK 0") {
            drop("not a PJLink projector");
            return;
        }
        if (secured && !driver.Setup.password) {
            refuse("the projector asks for a password");
            return;
        }
        digest = secured ? md5(secured[1] + driver.Setup.password) : "";
        watch = clear(watch);
        state = "ready";
        query("NAME", function (name) { report("Name", fromUtf8(name)); });
        poll();
    }

    function fromUtf8(bytes) {
        try {
            return decodeURIComponent(escape(bytes));
        } catch (notUtf8) {
            return bytes;
        }
    }

    // ---- Requests: one on its way at a time

    function sendNext() {
        if (state !== "ready" || current || waiting.length === 0)
            return;
        current = waiting.shift();
        expectSomething("the projector does not answer");
        socket.write(digest + current.line + "\r");
        digest = "";
    }

    function onAnswer(answer) {
        var request = current;
        watch = clear(watch);
        current = null;
        report("Online", "yes");
        report("Connection", "connected");
        request.done(answer, REFUSALS[answer] || "");
        sendNext();
    }

    // Asks, and hands a good answer to one function, a refusal to another.
    function query(name, take, refused) {
        waiting.push({
            line: "%1" + name + " ?",
            poll: true,
            done: function (answer, problem) {
                if (!problem)
                    take(answer);
                else if (refused)
                    refused();
            }
        });
        sendNext();
    }

    // The next round begins when this one is over, so a slow projector is asked less often.
    function poll() {
        next = clear(next);
        query("POWR", takePower, function () { report("Power", "unknown"); });
        query("INPT", function (code) { report("Input", inputName(code)); });
        query("AVMT", function (code) { report("Muted", MUTED[code] || "nothing"); },
              function () { report("Muted", "nothing"); });
        query("LAMP", takeLamps);
        query("ERST", takeErrors, pollLater);
    }

    function pollLater() {
        clear(next);
        next = QCalverin.SetTimeout(poll, pollTime());
    }

    function takePower(code) {
        report("Power", POWER[Number(code)] || "unknown");
    }

    function takeLamps(text) {
        var hours = parseInt(text, 10);
        if (hours >= 0)
            report("LampHours", hours);
    }

    function takeErrors(digits) {
        var found = ERROR_SOURCES.map(function (source, i) {
            var level = ERROR_LEVELS[Number(digits.charAt(i))];
            return level ? source + " " + level : "";
        });
        report("ErrorStatus", found.filter(String).join(", ") || "ok");
        pollLater();
    }

    // ---- Commands: the result comes with the projector's answer

    function command(line, query, take) {
        var id = QCalverin.PostponeResult(), timer = 0;
        var request = { line: "%1" + line, poll: false, done: finish };

        function finish(answer, problem) {
            if (request.over)
                return;
            request.over = true;
            timer = clear(timer);
            QCalverin.SetResult(id, problem ? "error: " + problem : "OK");
            if (answer === "OK")
                askAgain(query, take);
        }

        if (waiting.filter(function (one) { return !one.poll; }).length >= MOST_WAITING) {
            finish(null, "too many commands");
            return;
        }
        timer = QCalverin.SetTimeout(function () {
            timer = 0;
            waiting = waiting.filter(function (one) { return one !== request; });
            finish(null, state === "ready" ? "the projector does not answer"
                                           : "not connected: " + (reported.Connection || "no answer"));
        }, COMMAND_TIME);
        insert(request);
        sendNext();
    }

    // Commands go in front of what is only asked for.
    function insert(request) {
        var place = 0;
        while (place < waiting.length && !waiting[place].poll)
            ++place;
        waiting.splice(place, 0, request);
    }

    function askAgain(name, take) {
        if (state === "ready")
            query(name, take);
    }

    // ---- Inputs: "31" is "Digital 1"

    function inputName(code) {
        return (INPUT_KINDS[Number(code.charAt(0)) - 1] || "Input " + code.charAt(0)) + " " + code.charAt(1);
    }

    function allInputs() {
        var names = [];
        for (var code = 11; code < 60; ++code)
            if (code % 10 !== 0)
                names.push(inputName(String(code)));
        return names;
    }

    function inputCode(name) {
        for (var code = 11; code < 60; ++code)
            if (code % 10 !== 0 && (name === String(code) || name === inputName(String(code))))
                return String(code);
        return "";
    }

    function keysOf(object) {
        var names = [];
        for (var name in object)
            names.push(name);
        return names;
    }

    driver = {
        Info: {
            Title: "PJLink projector",
            Author: "House technics",
            Version: "1.0",
            Description: "A projector that speaks PJLink class 1 over TCP",
            Variables: {
                Power: { Type: "Enum", Items: ["unknown"].concat(POWER) },
                Muted: { Type: "Enum", Items: ["nothing", "picture", "sound", "all"] },
                LampHours: { MinValue: 0, MaxValue: 99999 },
                Online: { Type: "Enum", Items: ["no", "yes"] }
            },
            Setup: {
                host: { Name: "Host", Hint: "address or name of the projector", MaxLength: 255 },
                port: { Name: "Port", MinValue: 1, MaxValue: 65535 },
                password: { Name: "Password", Hint: "empty if the projector asks for none", MaxLength: 32 },
                poll: { Name: "Poll every", Suffix: " ms", MinValue: SHORTEST_POLL, MaxValue: 60000 }
            },
            Commands: {
                PowerOn: { Name: "Power on", GroupName: "Projector", GroupCmdOrder: 0 },
                PowerOff: { Name: "Power off", GroupName: "Projector", GroupCmdOrder: 1 },
                SelectInput: {
                    Name: "Select input", GroupName: "Projector", GroupCmdOrder: 2,
                    Params: { input: { Type: "Enum", Items: allInputs() } }
                },
                Mute: {
                    Name: "Mute", GroupName: "Projector", GroupCmdOrder: 3,
                    Params: { what: { Type: "Enum", Items: keysOf(MUTE) } }
                },
                State: { Name: "State", GroupName: "Projector", GroupCmdOrder: 4 }
            }
        },
        Setup: { host: "127.0.0.1", port: 4352, password: "", poll: 2000 },
        Device: {
            Power: "unknown", Input: "", Muted: "nothing", LampHours: 0, ErrorStatus: "", Online: "no", Name: "",
            Connection: "not connected"
        },

        PowerOn: function () { command("POWR 1", "POWR", takePower); },
        PowerOff: function () { command("POWR 0", "POWR", takePower); },

        SelectInput: function (input) {
            var code = inputCode(input);
            if (!code)
                return "error: not an input: " + input;
            command("INPT " + code, "INPT", function (now) { report("Input", inputName(now)); });
        },

        Mute: function (what) {
            if (!MUTE.hasOwnProperty(what))
                return "error: cannot mute: " + what;
            command("AVMT " + MUTE[what], "AVMT", function (now) { report("Muted", MUTED[now] || "nothing"); });
        },

        // All that is known, a line each.
        State: function () {
            return keysOf(reported).sort().map(function (name) { return name + "=" + reported[name]; }).join("\n");
        },

        _mStart: function () {
            socket = QCalverin.CreateSocket();
            socket.on("connect", onConnect);
            socket.on("close", onClose);
            socket.on("error", onError);
            socket.on("data", onData);
            connect();
        },

        _mStop: function () {
            var open = waiting.concat(current || []).filter(function (request) { return !request.poll; });
            state = "down";
            waiting = [];
            current = null;
            watch = clear(watch);
            next = clear(next);
            if (socket)
                socket.end();
            socket = null;
            open.forEach(function (request) { request.done(null, "the driver has stopped"); });
        }
    };
    return driver;
})()
