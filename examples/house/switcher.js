// A video switcher on a serial line: "IN 3\r" chooses an input, "OK 3\r" tells that it is chosen.
({
    Info: {
        Title: "Video switcher",
        Author: "House technics",
        Version: "1.0",
        Description: "Chooses one of eight inputs",
        Variables: { Line: { Type: "Enum", Items: ["closed", "open"] }, Input: { Type: "Integer" } },
        Setup: { line: { Name: "Line", Widget: "Serial" } },
        Commands: { Choose: { Params: { input: { Type: "Integer", MinValue: 1, MaxValue: 8 } } } }
    },

    Setup: { line: '{ "Type":"Serial", "ResourceID":3, "ChannelIndex":0 }' },
    Device: { Line: "closed", Input: 0 },

    _mStart: function () {
        var switcher = this, rest = "", line = QCalverin.GetResource(this.Setup.line);
        if (line === undefined)
            throw new Error("choose a serial port in the setup");
        line.On("data", function (bytes) {
            var lines = (rest + bytes.toString("ascii")).split("\r");
            rest = lines.pop(); // the beginning of the next line
            lines.forEach(function (text) {
                if (text.indexOf("OK ") === 0)
                    switcher.Device.Input = Number(text.substr(3));
            });
        });
        line.On("close", function () { switcher._stand(false); });
        line.SetBaudRate(9600);
        line.Open(function () { switcher._stand(true); });
        this._line = line;
    },

    _stand: function (isOpen) {
        this._isOpen = isOpen;
        this.Device.Line = isOpen ? "open" : "closed";
    },

    _mStop: function () { this._line.Close(); },

    Choose: function (input) {
        if (!this._isOpen)
            throw new Error("the line is not open");
        this._line.Write("IN " + input + "\r");
    }
})
