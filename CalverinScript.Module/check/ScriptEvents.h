#pragma once

/// @file
/// The events of the objects that scripts use. Notes on scripts and the declarations for editors read these rows. Pure
/// data, without threads.

/// One event: what its listener gets before the object itself.
struct ScriptEvent {
    const char* object; ///< as declarations name it
    const char* name;
    const char* values; ///< declared parameters of a listener, "" for none
};

inline constexpr ScriptEvent kScriptEvents[] = {
    {"TCPClient", "connect", ""},
    {"TCPClient", "data", "bytes: Buffer"},
    {"TCPClient", "close", "hadError: boolean"},
    {"TCPClient", "error", "error: NetworkError"},
    {"UDPObject", "message", "bytes: Buffer, from: Sender"},
    {"UDPObject", "error", "error: NetworkError"},
    {"HTTPClient", "response", "response: HTTPResponse, error: NetworkError"},
    {"HTTPClient", "download_progress", "isUnderWay: boolean"},
    {"HTTPClient", "upload_progress", "isUnderWay: boolean"},
    {"SerialPort", "open", ""},
    {"SerialPort", "close", ""},
    {"SerialPort", "data", "bytes: Buffer"},
    {"SerialPort", "error", "on: boolean"},
    {"SerialPort", "tx_empty", "on: boolean"},
    {"SerialPort", "break", "on: boolean"},
    {"SerialPort", "cts", "on: boolean"},
    {"SerialPort", "dsr", "on: boolean"},
    {"DMXUniverse", "open", ""},
    {"DMXUniverse", "close", ""},
    {"DMXUniverse", "data", "levels: Buffer"},
    {"IOChannel", "open", ""},
    {"IOChannel", "close", ""},
    {"IOChannel", "data", "isOn: boolean"},
};
