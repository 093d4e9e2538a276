#include "HostLookup.h"

#include <array>
#include <memory>

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

std::string SystemHostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool LookUpHost(const std::string& name, std::uint32_t& address) {
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM; // one entry for each address
    addrinfo* first = nullptr;
    if (getaddrinfo(name.c_str(), nullptr, &wanted, &first) != 0)
        return false;
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> entries(first, &freeaddrinfo);
    address = reinterpret_cast<const sockaddr_in*>(entries->ai_addr)->sin_addr.s_addr;
    return true;
}

bool InterfaceAddresses(std::vector<std::uint32_t>& addresses) {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return false;
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> entries(first, &freeifaddrs);
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET && (entry->ifa_flags & IFF_UP) != 0)
            addresses.push_back(reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr.s_addr);
    }
    return true;
}
