#include "MWSAData.h"

#include "HostLookup.h"
#include "SocketAddress.h"

MWSAData::MWSAData()
    : m_library(new SocketLibrary{2, "System sockets", "Running", 0}) {}

MWSAData::~MWSAData() = default;

std::string MWSAData::GetHostName() {
    m_hostName = SystemHostName();
    return m_hostName;
}

std::string MWSAData::GetHostIP() {
    if (m_hostName.empty())
        GetHostName();
    std::uint32_t address = 0;
    m_hostIp = LookUpHost(m_hostName, address) ? DottedText(address) : std::string();
    return m_hostIp;
}

std::int32_t MWSAData::GetVersion() {
    return (m_library->version & 0xFF) * 100 + (m_library->version >> 8);
}

std::string MWSAData::GetDescription() {
    return m_library->description;
}

std::string MWSAData::GetSystemStatus() {
    return m_library->systemStatus;
}

std::int32_t MWSAData::GetMaxSockets() {
    return m_library->maxSockets;
}

const char* MWSAData::GetErrorText(std::int32_t code) {
    return NetErrorText(code);
}

std::int32_t MWSAData::TranslateError(std::int32_t wsaError) {
    return NetCodeOf(NetOperation::General, static_cast<SocketError>(wsaError));
}

std::int32_t MWSAData::Start() {
    m_started.store(true, std::memory_order_release);
    return NetSuccess;
}

std::int32_t MWSAData::Stop() {
    m_started.store(false, std::memory_order_release);
    return NetSuccess;
}
