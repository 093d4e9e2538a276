#include "SerialLine.h"

#include <linux/serial.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>

namespace stagehost {

namespace {

struct NamedRate {
    speed_t name;
    std::uint32_t rate;
};

constexpr NamedRate kNamedRates[] = {
    {B300, 300},     {B600, 600},     {B1200, 1200},   {B2400, 2400},     {B4800, 4800},     {B9600, 9600},
    {B19200, 19200}, {B38400, 38400}, {B57600, 57600}, {B115200, 115200}, {B230400, 230400},
};

std::uint32_t RateOf(speed_t name) {
    for (const auto& row : kNamedRates) {
        if (row.name == name)
            return row.rate;
    }
    return 0;
}

std::uint32_t DataSizeOf(tcflag_t flags) {
    switch (flags & CSIZE) {
    case CS5:
        return 5;
    case CS6:
        return 6;
    case CS7:
        return 7;
    default:
        return 8;
    }
}

} // namespace

std::optional<LineSettings> ReadLineSettings(std::intptr_t handle) {
    termios line{};
    if (tcgetattr(static_cast<int>(handle), &line) != 0)
        return std::nullopt;
    LineSettings settings;
    settings.baudRate = RateOf(cfgetospeed(&line));
    settings.dataSize = DataSizeOf(line.c_cflag);
    if ((line.c_cflag & PARENB) != 0)
        settings.parity = (line.c_cflag & PARODD) != 0 ? 1 : 2;
    settings.stopBits = (line.c_cflag & CSTOPB) != 0 ? 2 : 1;
    settings.hardwareFlow = (line.c_cflag & CRTSCTS) != 0;
    return settings;
}

std::optional<LineCounters> ReadLineCounters(std::intptr_t handle) {
    serial_icounter_struct counted{};
    if (ioctl(static_cast<int>(handle), TIOCGICOUNT, &counted) != 0)
        return std::nullopt;
    return LineCounters{counted.brk, counted.frame + counted.parity + counted.overrun + counted.buf_overrun};
}

int UnsentBytes(std::intptr_t handle) {
    int count = 0;
    return ioctl(static_cast<int>(handle), TIOCOUTQ, &count) == 0 ? count : 0;
}

void DrainLine(std::intptr_t handle) {
    tcdrain(static_cast<int>(handle));
}

bool IsHungUp(std::intptr_t handle) {
    pollfd line{static_cast<int>(handle), 0, 0};
    return poll(&line, 1, 0) > 0 && (line.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

} // namespace stagehost
