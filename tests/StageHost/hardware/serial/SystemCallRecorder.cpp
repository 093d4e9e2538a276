#include "SystemCallRecorder.h"

#include <cstdarg>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include <dlfcn.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

// A library that is preloaded: it stands between the program and the system's calls for serial lines, notes them, and
// answers for a port that can do everything, which a pseudo-terminal cannot.

namespace {

struct Recorder {
    std::mutex lock;
    std::string record;
    std::map<int, termios> lines; ///< what each line was told last
    int pins = TIOCM_CTS;
    int breaks = 0;
    int errors = 0;
};

Recorder& TheRecorder() {
    static auto* recorder = new Recorder; // for the whole life of the process
    return *recorder;
}

void Note(const std::string& text) {
    TheRecorder().record += text + "\n";
}

std::string TextOf(const termios& line) {
    const char* sizes[] = {"5", "6", "7", "8"};
    std::string text = "line rate=" + std::to_string(cfgetospeed(&line) == B19200 ? 19200 : 0);
    text += std::string(" size=") + sizes[(line.c_cflag & CSIZE) / CS6];
    text += (line.c_cflag & PARENB) == 0   ? " parity=none"
            : (line.c_cflag & PARODD) != 0 ? " parity=odd"
                                           : " parity=even";
    text += (line.c_cflag & CSTOPB) != 0 ? " stop=2" : " stop=1";
    return text + ((line.c_cflag & CRTSCTS) != 0 ? " flow=hardware" : " flow=none");
}

std::string PinText(int pins) {
    return std::string((pins & TIOCM_DTR) != 0 ? " DTR" : "") + ((pins & TIOCM_RTS) != 0 ? " RTS" : "");
}

template <typename Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int tcsetattr(int handle, int actions, const termios* line) noexcept {
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    const auto known = TheRecorder().lines.find(handle);
    if (known == TheRecorder().lines.end() || TextOf(known->second) != TextOf(*line))
        Note(TextOf(*line));
    TheRecorder().lines[handle] = *line;
    termios possible = *line; // what a pseudo-terminal does not refuse
    possible.c_cflag = (possible.c_cflag & ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CRTSCTS)) | CS8;
    return Next<int (*)(int, int, const termios*)>("tcsetattr")(handle, actions, &possible);
}

int tcgetattr(int handle, termios* line) noexcept {
    const int result = Next<int (*)(int, termios*)>("tcgetattr")(handle, line);
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    const auto known = TheRecorder().lines.find(handle);
    if (result == 0 && known != TheRecorder().lines.end())
        *line = known->second;
    return result;
}

int tcdrain(int handle) {
    const int result = Next<int (*)(int)>("tcdrain")(handle);
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    Note("drain");
    return result;
}

ssize_t write(int handle, const void* data, size_t size) {
    const ssize_t written = syscall(SYS_write, handle, data, size);
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    if (written > 0 && TheRecorder().lines.count(handle) != 0)
        Note("write " + std::string(static_cast<const char*>(data), static_cast<std::size_t>(written)));
    return written;
}

int ioctl(int handle, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    Recorder& recorder = TheRecorder();
    switch (request) {
    case TIOCSBRK:
        Note("break on");
        return 0;
    case TIOCCBRK:
        Note("break off");
        return 0;
    case TIOCMBIS:
        Note("raise" + PinText(*static_cast<int*>(argument)));
        return 0;
    case TIOCMBIC:
        Note("drop" + PinText(*static_cast<int*>(argument)));
        return 0;
    case TIOCMGET:
        *static_cast<int*>(argument) = recorder.pins;
        return 0;
    case TIOCGICOUNT: {
        serial_icounter_struct counted{};
        counted.brk = recorder.breaks;
        counted.frame = recorder.errors;
        std::memcpy(argument, &counted, sizeof(counted));
        return 0;
    }
    default:
        return static_cast<int>(syscall(SYS_ioctl, handle, request, argument));
    }
}

const char* TakeSerialRecord() {
    static auto* taken = new std::string;
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    taken->swap(TheRecorder().record);
    TheRecorder().record.clear();
    return taken->c_str();
}

void SetSerialPins(int cts, int dsr) {
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    TheRecorder().pins = (cts != 0 ? TIOCM_CTS : 0) | (dsr != 0 ? TIOCM_DSR : 0);
}

void CountSerial(int breaks, int errors) {
    const std::lock_guard<std::mutex> hold(TheRecorder().lock);
    TheRecorder().breaks += breaks;
    TheRecorder().errors += errors;
}

} // extern "C"
