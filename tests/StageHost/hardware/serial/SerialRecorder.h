#pragma once

#include <functional>

#include "Notes.h"
#include "SerialPort.h"

/// Notes what a port tells: "data ...", "event 5 1", "state", and the words.
class SerialRecorder final : public stagehost::SerialNews {
public:
    void StateChanged() override {
        notes.Add("state");
        if (onState)
            onState();
    }
    void DataCame(const std::uint8_t* data, std::size_t size) override {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_data.append(reinterpret_cast<const char*>(data), size);
        notes.Add("data " + m_data);
    }
    void Happened(stagehost::SerialEvent event, bool state) override {
        notes.Add("event " + std::to_string(static_cast<int>(event)) + " " + std::to_string(state ? 1 : 0));
    }
    void Told(const std::string& text) override { notes.Add(text); }

    Notes notes;
    std::function<void()> onState; ///< on the port's thread, behind the note; to be set while the port is closed

private:
    std::mutex m_lock;  ///< guards m_data
    std::string m_data; ///< all that has come
};
