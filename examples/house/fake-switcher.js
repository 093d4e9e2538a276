// The switcher at the other end of the line.
var switcher = Counterpart.serial({ lines: "\r" });

switcher.onLine = function (line, text) {
    if (/^IN [1-8]$/.test(text))
        line.say("OK " + text.slice(3) + "\r");
};
