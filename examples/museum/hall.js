// A hall of a museum: from its opening to its closing the light is on and a film begins every so many minutes, the first one halfway to
// the next. Halls open and close one minute after the other.

({
    Info: {
        Title: "Hall",
        Version: "1.0",
        Description: "Light and films of a museum's hall, by the time of day",
        Setup: {
            number: { Name: "Number", Type: "Integer", MinValue: 1, MaxValue: 60 },
            film: { Name: "A film every", Type: "Integer", Suffix: " min", MinValue: 2, MaxValue: 60 },
            opens: { Name: "Opens", Type: "Integer", Suffix: " o'clock", MinValue: 0, MaxValue: 23 },
            closes: { Name: "Closes", Type: "Integer", Suffix: " o'clock", MinValue: 0, MaxValue: 23 }
        },
        Variables: {
            Light: { Type: "Enum", Items: ["off", "on"] },
            Films: { Type: "Integer", MinValue: 0 }
        }
    },

    Setup: { number: 1, film: 10, opens: 9, closes: 18 },

    Device: { Light: "off", Films: 0 },

    _minute: 60000, // ms
    _closing: 0,    // ms since 1970, as is the next
    _nextFilm: 0,

    _mStart: function () {
        this._at(this.Setup.opens, this._open);
        this._at(this.Setup.closes, this._close);
    },

    // Does something today at that hour, and the hall's number of minutes later, unless that is over.
    _at: function (hour, work) {
        var hall = this, wait = this._today(hour) - new Date().getTime();
        if (wait >= 0)
            QCalverin.SetTimeout(function () { work.call(hall); }, wait);
    },

    _today: function (hour) {
        return new Date().setHours(hour, this.Setup.number, 0, 0);
    },

    _open: function () {
        this.Device.Light = "on";
        this._closing = this._today(this.Setup.closes);
        this._nextFilm = this._today(this.Setup.opens) + this.Setup.film * this._minute / 2;
        this._play();
    },

    // Each film has a time of its own, so that none shifts the next, and one that a busy computer was late for is not left out.
    _play: function () {
        var hall = this, now = new Date().getTime(), every = this.Setup.film * this._minute;
        for (; this._nextFilm <= now && this._nextFilm < this._closing; this._nextFilm += every)
            this.Device.Films = Number(this.Device.Films) + 1;
        if (this._nextFilm < this._closing)
            QCalverin.SetTimeout(function () { hall._play(); }, this._nextFilm - now);
    },

    _close: function () {
        this._play();
        this.Device.Light = "off";
        print("closed after " + this.Device.Films + " films");
    }
})
