#pragma once

/// @file
/// What the preloaded library offers to the program that runs with it. Found with dlsym, since nothing links it.

extern "C" {

/// The calls since the last asking, one a line: "line rate=19200 size=7 ...", "raise DTR", "break
/// on", "write x", "drain".
__attribute__((visibility("default"))) const char* TakeSerialRecord();

/// The modem lines that the ports seem to have.
__attribute__((visibility("default"))) void SetSerialPins(int cts, int dsr);

/// Breaks and wrong characters that seem to have come in, beside those before.
__attribute__((visibility("default"))) void CountSerial(int breaks, int errors);
}
