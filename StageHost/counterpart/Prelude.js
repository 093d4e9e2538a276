// What the script of a counterpart sees, made of the functions of the program in "native". docs/counterparts.md tells it to its authors.
(function (native, global) {
    function shown(value) {
        return typeof value === "string" ? '"' + value + '"' : String(value);
    }

    function whole(where, name, value, least, most) {
        if (typeof value !== "number" || value !== Math.floor(value) || value < least || value > most)
            throw new Error(where + ": " + name + " takes a whole number from " + least +
                            (most === undefined ? "" : " to " + most) + ", not " + shown(value));
        return value;
    }

    function text(where, value) {
        if (typeof value !== "string" || value === "")
            throw new Error(where + " takes a text, not " + shown(value));
        return value;
    }

    function needFunction(where, f) {
        if (typeof f !== "function")
            throw new Error(where + " takes a function, not " + shown(f));
        return f;
    }

    var mostBytes = 1073741824; // of a frame
    var cuts = ["lines", "length", "prefix", "frame"];
    var orders = { big: false, little: true };

    // How a stream is cut into frames, and what takes them.
    function framing(where, how) {
        var given = cuts.filter(function (key) { return how[key] !== undefined; });
        if (given.length > 1)
            throw new Error(where + ' takes one of "' + given.join('" and "') + '"');
        if (how.lines !== undefined)
            return { handler: "onLine", delimiter: text(where + ': "lines"', how.lines), start: how.start || "" };
        if (how.length !== undefined)
            return { handler: "onFrame", length: whole(where, '"length"', how.length, 1, mostBytes) };
        if (how.prefix !== undefined) {
            if (how.prefix !== 1 && how.prefix !== 2 && how.prefix !== 4)
                throw new Error(where + ': "prefix" is the count of bytes that tell a length, 1, 2 or 4, not ' + shown(how.prefix));
            if (how.order !== undefined && !orders.hasOwnProperty(how.order))
                throw new Error(where + ': "order" is "big" or "little", not ' + shown(how.order));
            return { handler: "onFrame", prefix: how.prefix, little: how.order === "little", whole: how.whole === true };
        }
        if (how.frame !== undefined)
            return { handler: "onFrame", own: needFunction(where + ': "frame"', how.frame) };
        return { handler: "onBytes" };
    }

    var streamKeys = ["name", "lines", "start", "length", "prefix", "order", "whole", "frame", "most"];
    var kinds = {
        tcp: { keys: streamKeys.concat(["port"]), handlers: ["onOpen", "onEnd", "onClose"] },
        udp: { keys: ["name", "port", "most"], handlers: ["onOpen", "onClose"] },
        serial: { keys: streamKeys.concat(["path"]), handlers: ["onOpen", "onClose"] }
    };
    var all = [];

    // One line of an endpoint: a connection, who has sent datagrams, whoever has opened the serial port.
    function Line(endpoint, id, who) {
        this.id = id;
        this.who = who;
        this.endpoint = endpoint;
        this.isOpen = true;
    }
    Line.prototype = {
        say: function (bytes) { native.say(this.endpoint.id, this.id, bytes); },
        close: function () { native.close(this.endpoint.id, this.id, "close"); },
        reset: function () { native.close(this.endpoint.id, this.id, "reset"); },
        halfClose: function () { native.close(this.endpoint.id, this.id, "half-close"); },
        stall: function () { native.reads(this.endpoint.id, this.id, false); },
        resume: function () { native.reads(this.endpoint.id, this.id, true); },
        toString: function () { return this.who || "line " + this.id; }
    };

    function Endpoint(kind, how) {
        var where = "Counterpart." + kind, key;
        if (how !== undefined && (typeof how !== "object" || how === null))
            throw new Error(where + " takes an object, not " + shown(how));
        how = how || {};
        for (key in how)
            if (kinds[kind].keys.indexOf(key) < 0)
                throw new Error(where + ': there is no "' + key + '"' + native.near(key, kinds[kind].keys));
        var rule = kind === "udp" ? { handler: "onDatagram" } : framing(where, how);
        rule.most = how.most === undefined ? 65536 : whole(where, '"most"', how.most, 1, mostBytes);
        this.kind = kind;
        this.name = how.name === undefined ? "" : text(where + ': "name"', how.name);
        this._handler = rule.handler;
        this._handlers = kinds[kind].handlers.concat([rule.handler]);
        this._lines = {};
        var place = native.open(kind, this.name, how.port === undefined ? 0 : whole(where, '"port"', how.port, 0, 65535), how.path || "", rule);
        this.id = place.id;
        this.host = place.host;
        this.port = place.port;
        this.path = place.path;
        all[this.id] = this;
    }
    Endpoint.prototype = {
        say: function (bytes) {
            var lines = this.lines(), place;
            for (place = 0; place < lines.length; ++place)
                lines[place].say(bytes);
        },
        lines: function () {
            var open = [], id;
            for (id in this._lines)
                open.push(this._lines[id]);
            return open;
        },
        leave: function () { this._forget("left"); native.work(this.id, "leave"); },
        comeBack: function () { native.work(this.id, "return"); },
        stall: function () { native.work(this.id, "stall"); },
        resume: function () { native.work(this.id, "resume"); },
        misbehave: function (how, oneIn) {
            var words = typeof how === "string" ? [how] : how;
            if (!(words instanceof Array))
                throw new Error("misbehave takes a word or a list of words, not " + shown(how));
            if (words.length === 0)
                throw new Error("misbehave takes a word at least; obey ends it");
            native.misbehave(this.id, words, oneIn === undefined ? 1 : whole("misbehave", "how often", oneIn, 1));
        },
        obey: function () { native.misbehave(this.id, [], 1); },
        _forget: function () {
            var id;
            for (id in this._lines)
                this._lines[id].isOpen = false;
            this._lines = {};
        },
        toString: function () { return this.name || this.kind; }
    };

    global.Counterpart = {
        tcp: function (how) { return new Endpoint("tcp", how); },
        udp: function (how) { return new Endpoint("udp", how); },
        serial: function (how) { return new Endpoint("serial", how); }
    };
    global.every = function (ms, f) { return native.timer(whole("every", "the time", ms, 1), true, needFunction("every", f)); };
    global.after = function (ms, f) { return native.timer(whole("after", "the time", ms, 0), false, needFunction("after", f)); };
    global.cancel = function (id) { native.cancel(id); };
    global.note = function (what) { native.note(String(what)); };
    global.print = function () { native.note(Array.prototype.join.call(arguments, " ")); };
    global.option = function (name, missing) {
        var given = native.option(String(name));
        if (given === undefined)
            return missing;
        if (typeof missing === "number" && (given === "" || isNaN(Number(given))))
            throw new Error('the option "' + name + '" takes a number, not ' + shown(given));
        if (typeof missing === "boolean" && given !== "true" && given !== "false")
            throw new Error('the option "' + name + '" is true or false, not ' + shown(given));
        return typeof missing === "number" ? Number(given) : typeof missing === "boolean" ? given === "true" : given;
    };
    global.bytes = function () {
        return String.fromCharCode.apply(null, arguments[0] instanceof Array ? arguments[0] : arguments);
    };
    Math.random = native.random;

    function tell(endpoint, handler, values) {
        news.handler = handler;
        if (typeof endpoint[handler] === "function")
            endpoint[handler].apply(endpoint, values);
    }

    var news = {
        handler: "", // that was called last
        opened: function (at, id, who) {
            var endpoint = all[at], line = new Line(endpoint, id, who);
            endpoint._lines[id] = line;
            tell(endpoint, "onOpen", [line]);
        },
        took: function (at, id, bytes) {
            var line = all[at]._lines[id];
            if (line)
                tell(all[at], all[at]._handler, [line, bytes]);
        },
        ended: function (at, id) {
            var line = all[at]._lines[id];
            if (line && !all[at].onEnd)
                line.halfClose();
            else if (line)
                tell(all[at], "onEnd", [line]);
        },
        closed: function (at, id, why) {
            var line = all[at]._lines[id];
            delete all[at]._lines[id];
            if (!line)
                return;
            line.isOpen = false;
            tell(all[at], "onClose", [line, why]);
        },
        // A line that was closed on this side: the script knows.
        forget: function (at, id) {
            if (all[at]._lines[id])
                all[at]._lines[id].isOpen = false;
            delete all[at]._lines[id];
        },
        left: function (at) { all[at]._forget(); },
        // What a call has returned: objects and lists as JSON, unless they have a text of their own.
        textOf: function (value) {
            var isPlain = value.toString === Object.prototype.toString || value.toString === Array.prototype.toString;
            try {
                return isPlain ? JSON.stringify(value) : String(value);
            } catch (error) {
                throw new Error("what it returns is no JSON: " + (error.message || error));
            }
        },
        // The functions that can be named by where they are kept, as [name, text] each.
        functions: function () {
            var found = [], seen = [];
            function look(object, prefix, depth) {
                if (seen.indexOf(object) >= 0 || seen.length >= 200)
                    return;
                seen.push(object);
                Object.keys(object).forEach(function (key) {
                    var member = Object.getOwnPropertyDescriptor(object, key).value, name = prefix + key;
                    if (typeof member === "function")
                        found.push([name, String(member)]);
                    if (depth > 0 && member !== null && (typeof member === "object" || typeof member === "function"))
                        look(member, name + ".", depth - 1);
                });
            }
            all.forEach(function (endpoint) { look(endpoint, "", 0); });
            look(global, "", 3);
            return found;
        },
        // What the script has set and nobody will ever call.
        complaint: function () {
            var place, key, endpoint;
            for (place = 0; place < all.length; ++place) {
                endpoint = all[place];
                for (key in endpoint) {
                    if (!endpoint.hasOwnProperty(key) || key.slice(0, 2) !== "on")
                        continue;
                    if (endpoint._handlers.indexOf(key) < 0)
                        return 'nothing calls "' + key + '" of ' + endpoint + native.near(key, endpoint._handlers);
                    if (typeof endpoint[key] !== "function")
                        return '"' + key + '" of ' + endpoint + " is no function";
                }
            }
            return "";
        }
    };
    return news;
})
