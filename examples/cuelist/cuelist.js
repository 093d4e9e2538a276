// Turns a cue list into timed steps.
//
// A device shows the functions of the object that its script ends in. Everything above that object stays private.

var cues = [];

function seconds(text, what) {
    var value = Number(text);
    if (text === "" || isNaN(value) || value < 0)
        throw new Error(what + " is not a number of seconds: " + text);
    return value;
}

// "19:30:00/00", as the host writes times, or "19:30:00": seconds since midnight
function timeOfDay(text) {
    var match = /^(\d+):(\d\d):(\d\d)(?:[\/.](\d\d))?$/.exec(text);
    if (!match)
        throw new Error("not a time: " + text);
    return match[1] * 3600 + match[2] * 60 + Number(match[3]) + (match[4] || 0) / 100;
}

function twoDigits(number) {
    return (number < 10 ? "0" : "") + number;
}

function clock(time) {
    var hundredths = Math.round(time * 100);
    var whole = Math.floor(hundredths / 100);
    return twoDigits(Math.floor(whole / 3600)) + ":" + twoDigits(Math.floor(whole / 60) % 60) + ":" +
        twoDigits(whole % 60) + "." + twoDigits(hundredths % 100);
}

function padded(text, width) {
    text = String(text);
    while (text.length < width)
        text += " ";
    return text;
}

function parseLine(line, number) {
    var match = /^(\S+)\s+(\S+)\s+(\S+)\s+(.+)$/.exec(line);
    if (!match)
        throw new Error("line " + number + " needs cue, wait, fade and text: " + line);
    return {
        name: match[1],
        wait: seconds(match[2], "line " + number + ": wait"),
        fade: seconds(match[3], "line " + number + ": fade"),
        text: match[4]
    };
}

function current() {
    if (cues.length === 0)
        throw new Error("there is no plan yet");
    return cues;
}

({
    // Forgets the plan.
    clear: function () {
        cues = [];
    },

    // plan(cueList, curtain): the cue list as text, and the time at which the curtain goes up.
    // Gives one line for each cue: when it starts, when its fade is done, and what it does.
    plan: function (cueList, curtain) {
        var planned = [];
        var time = timeOfDay(curtain);
        var lines = cueList.split("\n");
        for (var index = 0; index < lines.length; ++index) {
            var line = lines[index].replace(/\s+$/, "");
            if (line === "" || line.charAt(0) === "#")
                continue;
            var cue = parseLine(line, index + 1);
            time += cue.wait;
            cue.start = time;
            planned.push(cue);
        }
        cues = planned;
        return cues.map(function (cue) {
            return clock(cue.start) + "  " + (cue.fade > 0 ? "to " + clock(cue.start + cue.fade) : "at once        ") +
                "  cue " + padded(cue.name, 4) + " " + cue.text;
        }).join("\n");
    },

    // nextCue(time): the first cue that has not started at that time.
    nextCue: function (time) {
        var now = timeOfDay(time);
        var coming = current().filter(function (cue) { return cue.start > now; });
        return coming.length === 0 ? "none" : "cue " + coming[0].name + ", " + coming[0].text;
    },

    // runningTime(): from the first cue to the end of the last fade.
    runningTime: function () {
        var end = 0;
        current().forEach(function (cue) { end = Math.max(end, cue.start + cue.fade); });
        return clock(end - cues[0].start);
    }
})
