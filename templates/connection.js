// A connection that a driver can rely on: connect time-out, framing, one request with one answer at a time, reconnecting with
// growing pauses, "offline" after silence. How to use it: docs/connection.md.
//
//   var connection = new Connection({ transport: Connection.tcp(host, port), framing: Connection.lines("\r\n"),
//                                     status: function (word, reason) {} });
//   connection.open();
//   connection.ask("STATE", function (answer, problem) {});
//
// All texts in here are bytes: each character is one, 0 to 255. With text: "utf8" those of the driver are real texts.
var Connection = (function () {
    var DEFAULTS = {
        connectTime: 3000,  // ms until a connection stands, a greeting included
        answerTime: 2000,   // ms for each answer
        waitTime: 5000,     // ms from a request to its answer or problem, whatever happens
        gap: 0,             // ms of rest behind each thing sent
        pause: 500,         // ms before the first attempt to connect again; doubles each time
        longestPause: 30000,
        pollTime: 2000,     // ms from the end of one round of questions to the next
        silence: 0,         // ms without a byte after which the peer is offline; 0: never, with poll three rounds and an answer
        tries: 1,           // how often a question is sent over a transport that loses things: UDP, serial
        most: 32,           // requests that may wait
        text: "latin1"      // or "utf8"
    };
    var CHUNK = 1024; // bytes that are made a text in one go

    // ---- bytes

    function textOf(buffer) {
        var text = "", length = buffer.length, i, k, codes;
        for (i = 0; i < length; i += CHUNK) {
            codes = [];
            for (k = i; k < length && k < i + CHUNK; ++k)
                codes.push(buffer[k]);
            text += String.fromCharCode.apply(null, codes);
        }
        return text;
    }

    function toUtf8(text) {
        return unescape(encodeURIComponent(text));
    }

    function fromUtf8(bytes) {
        try {
            return decodeURIComponent(escape(bytes));
        } catch (notUtf8) {
            return bytes;
        }
    }

    function isBytes(text) {
        return !/[^\u0000-\u00ff]/.test(text);
    }

    // ---- timers: one that runs at most once at a time, and forgets its number when it is over

    function Timer(work) {
        var id = 0;
        function stop() {
            if (id > 0)
                QCalverin.ClearTimeout(id);
            id = 0;
        }
        return {
            stop: stop,
            runs: function () { return id > 0; },
            start: function (ms) {
                stop();
                id = QCalverin.SetTimeout(function () {
                    id = 0;
                    work();
                }, ms);
            }
        };
    }

    // What a function of the driver throws harms nobody here: it ends up in the variable "Error", as anywhere.
    function tell(listener, values) {
        try {
            if (listener)
                listener.apply(null, values);
        } catch (thrown) {
            QCalverin.SetTimeout(function () { throw thrown; }, 0);
        }
    }

    // ---- framings: encode(payload) gives bytes; feed(bytes, frame, garbage) finds frames, however they are cut or joined

    // Frames between separators. decode gives null for what is no frame; one that is too long is dropped to its end.
    function separated(separator, longest, encode, decode) {
        var keep = typeof separator === "string" ? separator.length - 1 : 0, rest = "", tooLong = false;
        longest = longest || 4096;
        function take(piece, frame, garbage) {
            var payload = tooLong || piece.length > longest ? null : piece === "" ? "" : decode(piece);
            if (payload === null)
                garbage(tooLong || piece.length > longest ? "a frame of more than " + longest + " bytes" : "no frame");
            else if (piece !== "")
                frame(payload);
            tooLong = false;
        }
        return {
            encode: encode,
            reset: function () {
                rest = "";
                tooLong = false;
            },
            feed: function (bytes, frame, garbage) {
                var pieces = (rest + bytes).split(separator), i;
                rest = pieces.pop();
                for (i = 0; i < pieces.length; ++i)
                    take(pieces[i], frame, garbage);
                if (tooLong || rest.length > longest + keep) {
                    tooLong = true;
                    rest = keep > 0 ? rest.substr(-keep) : "";
                }
            }
        };
    }

    function same(bytes) {
        return bytes;
    }

    // Lines that end in CR, LF or both, whatever is sent behind each; empty ones are left out.
    function lines(end, longest) {
        var behind = end === undefined ? "\r\n" : end;
        return separated(/[\r\n]/, longest, function (payload) { return payload + behind; }, same);
    }

    // Frames that end in a text and perhaps begin with one, such as STX and ETX. What stands before the beginning is dropped.
    function delimited(end, begin, longest) {
        var before = begin || "";
        return separated(end, longest, function (payload) { return before + payload + end; }, function (piece) {
            var at = before === "" ? 0 : piece.lastIndexOf(before);
            return at < 0 ? null : piece.substr(at + before.length);
        });
    }

    // SLIP, RFC 1055, with an END in front as well.
    function slip(longest) {
        var END = "\xc0", ESC = "\xdb", NAMES = { "\xdc": END, "\xdd": ESC };
        return separated(END, longest, function (payload) {
            return END + payload.split(ESC).join(ESC + "\xdd").split(END).join(ESC + "\xdc") + END;
        }, function (piece) {
            var parts = piece.split(ESC), payload = parts[0], i;
            for (i = 1; i < parts.length; ++i) {
                if (!NAMES.hasOwnProperty(parts[i].charAt(0)))
                    return null;
                payload += NAMES[parts[i].charAt(0)] + parts[i].substr(1);
            }
            return payload;
        });
    }

    // Consistent overhead byte stuffing (S. Cheshire and M. Baker, SIGCOMM 1997), frames divided by a zero byte.
    function cobs(longest) {
        return separated("\x00", longest, function (payload) {
            var text = "", blocks = payload.split("\x00"), i, block;
            for (i = 0; i < blocks.length; ++i) {
                for (block = blocks[i]; block.length >= 254; block = block.substr(254))
                    text += "\xff" + block.substr(0, 254);
                if (block !== "" || blocks[i] === "" || i < blocks.length - 1)
                    text += String.fromCharCode(block.length + 1) + block;
            }
            return text + "\x00";
        }, function (piece) {
            var text = "", at = 0, code;
            while (at < piece.length) {
                code = piece.charCodeAt(at);
                if (at + code > piece.length)
                    return null;
                text += piece.substr(at + 1, code - 1);
                at += code;
                if (code < 255 && at < piece.length)
                    text += "\x00";
            }
            return text;
        });
    }

    // A length in front: { bytes: 1, 2 or 4, little: false, plus: what the length counts beyond the payload, longest: 4096 }.
    // A length that cannot be is the end of all sense: nobody knows where the next frame begins.
    function counted(form) {
        var size = form && form.bytes || 2, little = form && form.little, plus = form && form.plus || 0;
        var longest = form && form.longest || 4096, most = Math.min(longest, Math.pow(256, size) - 1 - plus), rest = "";
        function lengthAt(at) {
            var length = 0, i;
            for (i = 0; i < size; ++i)
                length = length * 256 + rest.charCodeAt(at + (little ? size - 1 - i : i));
            return length - plus;
        }
        return {
            encode: function (payload) {
                var head = "", left = payload.length + plus, i;
                if (payload.length > most)
                    throw new Error("a frame of more than " + most + " bytes");
                for (i = 0; i < size; ++i, left = Math.floor(left / 256))
                    head = little ? head + String.fromCharCode(left % 256) : String.fromCharCode(left % 256) + head;
                return head + payload;
            },
            reset: function () { rest = ""; },
            feed: function (bytes, frame, garbage, lost) {
                var at = 0, length;
                rest += bytes;
                while (rest.length - at >= size) {
                    length = lengthAt(at);
                    if (length < 0 || length > longest) {
                        rest = "";
                        lost("a frame of " + length + " bytes");
                        return;
                    }
                    if (rest.length - at - size < length)
                        break;
                    frame(rest.substr(at + size, length));
                    at += size + length;
                }
                rest = rest.substr(at);
            }
        };
    }

    // Every block is a frame of its own, as with UDP.
    function whole() {
        return { encode: same, reset: function () {}, feed: function (bytes, frame) { frame(bytes); } };
    }

    // ---- transports: make(events) gives open, close and send; events are opened(), closed(reason), data(bytes),
    // answer(object) and refused(problem). `restarts`: after a missing answer a new connection is made, so that no answer
    // comes to the wrong question. `tells`: an open connection says that there is a peer.

    var SOCKET_PROBLEMS = {
        "-3": "no such address", "-4": "no answer", "-5": "nobody listens", "-6": "no way",
        "-29": "the connection was broken off"
    };

    function tcp(host, port) {
        var where = host + ":" + port;
        return { restarts: true, tells: true, where: where, framing: lines, make: function (events) {
            var socket = null, wanted = false, stands = false;
            var owed = 0; // "close" events of our own end() that are still to come; what comes before them is of yesterday
            function take() {
                if (socket)
                    return;
                socket = QCalverin.CreateSocket();
                socket.on("connect", function () {
                    if (owed > 0 || !wanted)
                        return;
                    stands = true;
                    events.opened();
                });
                socket.on("data", function (bytes) {
                    if (owed === 0 && stands)
                        events.data(textOf(bytes));
                });
                socket.on("error", function (error) {
                    if (owed === 0 && wanted)
                        events.closed((SOCKET_PROBLEMS[error.errorCode] || error.errorText) + " (" + where + ")");
                });
                socket.on("close", function () {
                    if (owed > 0) {
                        owed -= 1;
                        if (owed === 0 && wanted)
                            attempt();
                    } else if (stands) {
                        events.closed("the peer has closed the connection (" + where + ")");
                    }
                });
            }
            function attempt() {
                socket.connect(Number(port), String(host));
            }
            return {
                open: function () {
                    take();
                    wanted = true;
                    if (owed === 0)
                        attempt();
                },
                close: function () {
                    wanted = stands = false;
                    owed += 1;
                    socket.end();
                },
                send: function (bytes) { socket.write(bytes); }
            };
        } };
    }

    function udp(host, port, localPort) {
        var only = /^\d+\.\d+\.\d+\.\d+$/.test(host) && !/^(22[4-9]|23\d|255)\.|\.255$|^0\./.test(host) ? host : "";
        return { where: host + ":" + port, framing: whole, make: function (events) {
            var socket = null, isOpen = false;
            function take() {
                if (socket)
                    return;
                socket = QCalverin.CreateSocket("udp4");
                socket.on("message", function (bytes, from) {
                    if (isOpen && (only === "" || from.address === only))
                        events.data(textOf(bytes));
                });
                socket.on("error", function (error) {
                    if (isOpen)
                        events.garbage(error.errorText);
                });
            }
            return {
                open: function () {
                    take();
                    isOpen = true;
                    socket.bind(Number(localPort || 0));
                    events.opened();
                },
                close: function () {
                    isOpen = false;
                    socket.close();
                },
                send: function (bytes) {
                    socket.send(new Buffer(bytes, "ascii"), 0, bytes.length, Number(port), String(host));
                }
            };
        } };
    }

    // The port is the text of a setting with the widget "Serial"; line: { baud, parity, dataBits, stopBits }. The host opens the
    // port whenever it is there, so nothing is tried again here.
    function serial(port, line) {
        var form = line || {};
        return { patient: true, where: "serial port", framing: lines, make: function (events) {
            var device = null, isOpen = false, wanted = false;
            function take() {
                device = QCalverin.GetResource(port);
                if (device === undefined)
                    return;
                device.On("open", function () {
                    if (!wanted || isOpen)
                        return;
                    isOpen = true;
                    events.opened();
                });
                device.On("close", function () {
                    if (!isOpen)
                        return;
                    isOpen = false;
                    events.closed("the port is closed");
                });
                device.On("data", function (bytes) {
                    if (isOpen)
                        events.data(textOf(bytes));
                });
            }
            return {
                open: function () {
                    wanted = true;
                    if (!device)
                        take();
                    if (!device) {
                        events.closed("no serial port is chosen in the setup");
                        return;
                    }
                    device.SetBaudRate(form.baud || 19200);
                    device.SetParity(form.parity || "None");
                    device.SetDataSize(form.dataBits || 8);
                    device.SetStopBits(form.stopBits || 1);
                    device.Open();
                },
                close: function () {
                    wanted = isOpen = false;
                    if (device)
                        device.Close();
                },
                send: function (bytes) { device.Write(bytes); }
            };
        } };
    }

    // A request is a path, or { path, method, body, headers }; an answer { status, text, data, headers }. A client that is
    // given up cannot be taken back, so there are four at most: when none of them is free, the server is not asked.
    function http(base, user, password) {
        var SERVER_ANSWERED = /^(20[1-4]|299|302)$/, METHODS = { PUT: "put", POST: "post" }, MOST = 4;
        return { restarts: true, where: base, make: function (events) {
            var clients = [], asking = null;
            function freeClient() {
                var i = 0, one;
                while (i < clients.length && clients[i].busy)
                    ++i;
                if (i === MOST)
                    return null;
                one = clients[i] || { busy: false, object: null };
                clients[i] = one;
                if (!one.object)
                    one.object = QCalverin.CreateHTTPClient();
                return one;
            }
            function answered(one, response, error) {
                one.busy = false;
                if (one !== asking)
                    return;
                asking = null;
                if (error.errorCode === 0)
                    events.answer({ status: response.statusCode, text: fromUtf8(textOf(response.data)),
                                    data: response.data, headers: response.headers });
                else if (SERVER_ANSWERED.test(error.errorCode))
                    events.refused(error.errorText);
                else
                    events.closed(error.errorText);
            }
            function send(request) {
                var form = typeof request === "string" ? { path: request } : request;
                var method = METHODS[form.method], one = freeClient();
                if (!one) {
                    events.closed("the server does not come back from " + MOST + " requests");
                    return;
                }
                one.busy = true;
                asking = one;
                one.object.on("response", function (response, error) { answered(one, response, error); });
                if (method)
                    one.object[method](base + form.path, form.headers || "", new Buffer(form.body || "", "utf8"), "", 0,
                                       user || "", password || "");
                else
                    one.object[form.method === "DELETE" ? "deleteResource" : "get"](base + form.path, form.headers || "", "", 0,
                                                                                    user || "", password || "");
            }
            return {
                open: function () { events.opened(); },
                close: function () { asking = null; },
                send: send
            };
        } };
    }

    // ---- the connection

    function Connection(given) {
        var options = {}, key;
        for (key in DEFAULTS)
            options[key] = DEFAULTS[key];
        for (key in given)
            options[key] = given[key];
        for (key in options)
            if (options[key] === undefined)
                throw new Error("Connection: " + key + " is undefined");
        if (!options.transport)
            throw new Error("Connection: choose a transport, such as Connection.tcp(host, port)");

        var transport = options.transport, framing = options.framing || (transport.framing ? transport.framing() : null);
        var silence = options.silence || (options.poll ? 3 * options.pollTime + options.answerTime : 0);
        var state = "stopped";   // "stopped", "down", "connecting", "greeting" or "open"
        var word = "stopped", reason = "";
        var pause = options.pause;
        var waiting = [], current = null, isPolling = false, dropped = 0;
        var firsts = -1; // how many requests the call of ready has made, -1 outside of it
        var link = transport.make({ opened: opened, closed: drop, data: feed, answer: take, refused: refused, garbage: garbage });
        var watch = Timer(connectTimeOut), answerWatch = Timer(noAnswer), again = Timer(connect), rest = Timer(pump);
        var nextPoll = Timer(poll), quiet = Timer(gone), lasting = Timer(function () { pause = options.pause; });

        function setStatus(newWord, newReason) {
            if (newWord === word && newReason === reason)
                return;
            word = newWord;
            reason = newReason;
            QCalverin.TraceMessage("connection to " + transport.where + ": " + word + (reason ? ", " + reason : ""),
                                   word === "offline" ? "ALARM" : "INFO");
            tell(options.status, [word, reason]);
        }

        // ---- standing and falling

        function connect() {
            state = "connecting";
            if (word === "stopped")
                setStatus("connecting", "");
            watch.start(options.connectTime);
            link.open();
        }

        function connectTimeOut() {
            var what = state === "greeting" ? "no greeting" : transport.patient ? "the port does not open" : "no answer";
            if (transport.patient)
                setStatus("offline", what);
            else
                drop(what + " within " + options.connectTime + " ms (" + transport.where + ")");
        }

        function opened() {
            if (state !== "connecting")
                return;
            if (framing)
                framing.reset();
            dropped = 0;
            lasting.start(options.longestPause);
            if (options.greet) {
                state = "greeting";
                return;
            }
            stand();
        }

        function stand() {
            watch.stop();
            state = "open";
            if (transport.tells || options.greet)
                setStatus("online", "");
            if (silence > 0)
                quiet.start(silence);
            firsts = 0;
            tell(options.ready, []);
            firsts = -1;
            poll();
            pump();
        }

        // What is under way fails, what waits goes on waiting for its time, questions of the poll are forgotten.
        function drop(problem) {
            var lost = current, polls = waiting.filter(function (one) { return one.isPoll; });
            if (state === "stopped" || state === "down")
                return;
            state = transport.patient ? "connecting" : "down";
            [watch, answerWatch, rest, nextPoll, quiet, lasting].forEach(function (timer) { timer.stop(); });
            current = null;
            waiting = waiting.filter(function (one) { return !one.isPoll; });
            if (!transport.patient) {
                link.close();
                again.start(pause);
                pause = Math.min(pause * 2, options.longestPause);
            }
            setStatus("offline", problem);
            if (lost && lost.again && !lost.isPoll && !lost.isOver)
                waiting.unshift(lost);
            else if (lost)
                finish(lost, null, problem);
            polls.forEach(function (one) { finish(one, null, problem); });
        }

        function gone() {
            var problem = "nothing heard for " + silence + " ms";
            if (transport.restarts)
                drop(problem);
            else
                setStatus("offline", problem);
        }

        function heard() {
            if (silence > 0)
                quiet.start(silence);
            pause = options.pause;
            if (state === "open")
                setStatus("online", "");
        }

        // ---- what comes

        function feed(bytes) {
            framing.feed(bytes, take, garbage, function (problem) {
                garbage(problem);
                if (transport.restarts)
                    drop("the peer sends " + problem);
            });
        }

        // One line in the log for each connection, not one for each byte of a peer that speaks something else.
        function garbage(problem) {
            dropped += 1;
            if (dropped === 1)
                QCalverin.TraceMessage("connection to " + transport.where + ": dropped " + problem, "ALARM");
        }

        function take(bytes) {
            var payload = framing && options.text === "utf8" ? fromUtf8(bytes) : bytes, request = current;
            if (state === "greeting") {
                greeted(payload);
            } else if (state === "open") {
                heard();
                if (request && (!request.match || request.match(payload)))
                    settle(payload, "");
                else
                    tell(options.frame, [payload]);
            }
        }

        function greeted(payload) {
            var verdict = false;
            try {
                verdict = options.greet(payload, transmit);
            } catch (thrown) {
                verdict = thrown.message || String(thrown);
            }
            if (state !== "greeting")
                return;
            if (verdict === true)
                stand();
            else if (verdict)
                drop(String(verdict));
        }

        function refused(problem) {
            heard();
            if (current)
                settle(null, problem);
        }

        function settle(answer, problem) {
            var request = current;
            answerWatch.stop();
            current = null;
            finish(request, answer, problem);
            pump();
        }

        // ---- requests

        function transmit(payload) {
            var bytes = framing ? framing.encode(options.text === "utf8" ? toUtf8(payload) : String(payload)) : payload;
            if (framing && !isBytes(bytes))
                throw new Error("characters beyond Latin-1 in a request");
            link.send(bytes);
        }

        function pump() {
            var request, problem;
            while (state === "open" && !current && !rest.runs() && waiting.length > 0) {
                request = waiting.shift();
                current = request.done ? request : null;
                problem = sent(request);
                if (state !== "open")
                    return;
                if (options.gap > 0)
                    rest.start(options.gap);
                if (problem || !request.done) {
                    current = null;
                    finish(request, null, problem);
                } else if (current === request) {
                    answerWatch.start(options.answerTime);
                }
            }
            if (options.poll && state === "open" && !current && waiting.length === 0 && !nextPoll.runs())
                nextPoll.start(options.pollTime);
        }

        function sent(request) {
            request.sent += 1;
            try {
                transmit(request.payload);
            } catch (problem) {
                return problem.message || String(problem);
            }
            return "";
        }

        function noAnswer() {
            var request = current;
            if (transport.restarts) {
                drop("no answer within " + options.answerTime + " ms (" + transport.where + ")");
                return;
            }
            if (framing)
                framing.reset();
            current = null;
            if (request.sent < options.tries && !request.isOver)
                waiting.unshift(request);
            else
                finish(request, null, "no answer within " + options.answerTime + " ms");
            pump();
        }

        function finish(request, answer, problem) {
            if (request.isOver)
                return;
            request.isOver = true;
            request.limit.stop();
            if (request.done)
                tell(request.done, [answer, problem]);
            else if (problem)
                QCalverin.TraceMessage("connection to " + transport.where + ": not sent, " + problem, "ALARM");
        }

        // The time of a request is up, whether it waits or is under way; an answer to it may still come and reaches nobody.
        function overdue(request) {
            waiting = waiting.filter(function (one) { return one !== request; });
            finish(request, null, state === "open" ? "no answer" : "not connected" + (reason ? ": " + reason : ""));
        }

        function place(isPoll) {
            var i = 0;
            if (firsts >= 0)
                return firsts++;
            while (!isPoll && i < waiting.length && !waiting[i].isPoll)
                ++i;
            return isPoll ? waiting.length : i;
        }

        function add(payload, done, form) {
            var request = { payload: payload, done: done, isPoll: isPolling, sent: 0, isOver: false,
                            again: form && form.again, match: form && form.match };
            request.limit = Timer(function () { overdue(request); });
            if (state === "stopped")
                finish(request, null, "the driver has stopped");
            else if (waiting.length >= options.most)
                finish(request, null, "too many requests wait");
            if (request.isOver)
                return;
            request.limit.start(form && form.within || options.waitTime);
            waiting.splice(place(request.isPoll), 0, request);
            if (!isPolling && firsts < 0)
                pump();
        }

        function poll() {
            nextPoll.stop();
            if (!options.poll || state !== "open")
                return;
            isPolling = true;
            tell(options.poll, []);
            isPolling = false;
            pump();
        }

        // ---- what a driver calls

        // Connects, and stays so until close.
        this.open = function () {
            if (state !== "stopped")
                return;
            pause = options.pause;
            connect();
        };

        this.close = function () {
            var all = current ? [current].concat(waiting) : waiting;
            if (state === "stopped")
                return;
            state = "stopped";
            [watch, answerWatch, again, rest, nextPoll, quiet, lasting].forEach(function (timer) { timer.stop(); });
            waiting = [];
            current = null;
            link.close();
            setStatus("stopped", "");
            all.forEach(function (one) { finish(one, null, "the driver has stopped"); });
        };

        // Sends a question when its turn comes. done(answer, problem) is called once: with the answer and "", or with null and what
        // went wrong. form: { within: ms, again: send it again on a new connection, match: whether a frame is its answer }.
        this.ask = function (payload, done, form) {
            add(payload, done || function () {}, form);
        };

        // Sends what nobody answers.
        this.say = function (payload, form) {
            add(payload, null, form);
        };

        // As ask, for a function that is a command: its result is what `take` makes of the answer, the answer itself without one, or
        // "error: " and the problem.
        this.command = function (payload, take, form) {
            var id = QCalverin.PostponeResult();
            add(payload, function (answer, problem) {
                var result = answer;
                try {
                    if (!problem && take)
                        result = take(answer);
                } catch (thrown) {
                    problem = thrown.message || String(thrown);
                }
                QCalverin.SetResult(id, problem ? "error: " + problem : result === undefined ? "OK" : String(result));
            }, form);
        };

        // "stopped", "connecting", "online" or "offline", and why.
        this.status = function () { return word; };
        this.reason = function () { return reason; };
    }

    Connection.tcp = tcp;
    Connection.udp = udp;
    Connection.serial = serial;
    Connection.http = http;
    Connection.lines = lines;
    Connection.delimited = delimited;
    Connection.slip = slip;
    Connection.cobs = cobs;
    Connection.counted = counted;
    Connection.whole = whole;
    Connection.bytesOf = textOf;
    return Connection;
}());
