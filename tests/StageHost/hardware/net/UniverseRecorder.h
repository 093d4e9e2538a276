#pragma once

#include <QUdpSocket>

#include "LevelsText.h"
#include "Notes.h"
#include "PortNews.h"

/// Notes what a universe tells: "levels 1=255", "state", and the words.
class UniverseRecorder final : public stagehost::InputNews {
public:
    void StateChanged() override { notes.Add("state"); }
    void Told(const std::string& text) override { notes.Add(text); }
    void LevelsChanged(const stagehost::DmxFrame& frame) override {
        notes.Add("levels " + stagehost::LevelsText(frame));
    }

    Notes notes;
};

/// A UDP port of the loopback that nobody has at the moment.
inline std::uint16_t FreeUdpPort() {
    QUdpSocket socket;
    socket.bind(QHostAddress(QHostAddress::LocalHost), 0);
    return socket.localPort();
}
