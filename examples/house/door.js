// The contact of a door: how often it was opened, and whether it is open now.
({
    Info: {
        Title: "Door contact",
        Author: "House technics",
        Version: "1.0",
        Description: "A digital input and a bell",
        Variables: { State: { Type: "Enum", Items: ["closed", "open"] }, Openings: { Type: "Integer" } },
        Setup: {
            contact: { Name: "Contact", Widget: "DigitalIn" },
            bell: { Name: "Bell", Widget: "DigitalOut" }
        }
    },

    Setup: {
        contact: '{ "Type":"DigitalIn", "ResourceID":2, "ChannelIndex":0 }',
        bell: '{ "Type":"DigitalOut", "ResourceID":2, "ChannelIndex":0 }'
    },
    Device: { State: "closed", Openings: 0 },

    _mStart: function () {
        var door = this;
        var contact = QCalverin.GetResource(this.Setup.contact), bell = QCalverin.GetResource(this.Setup.bell);
        if (contact === undefined || bell === undefined)
            throw new Error("choose a contact and a bell in the setup");
        contact.On("data", function (isOpen) {
            door.Device.State = isOpen ? "open" : "closed";
            if (isOpen)
                door.Device.Openings += 1;
            bell.SetValue(isOpen ? 1 : 0);
        });
        contact.Open();
        bell.Open();
        this._opened = [contact, bell];
    },

    _mStop: function () {
        this._opened.forEach(function (channel) { channel.Close(); });
    }
})
