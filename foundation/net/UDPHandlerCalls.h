#pragma once

#include "MUDPSocket.h"

#include <mutex>

/// Calls every handler in turn. A handler may add and remove handlers meanwhile, itself among them.
template <class Call>
void MUDPSocket::TellHandlers(Call call) {
    const std::lock_guard<MLockedList<IUDPSocketHandler*>> guard(m_handlers);
    IUDPSocketHandler* handler = nullptr;
    for (std::size_t position = 0; m_handlers.Get(position, handler); ++position)
        call(*handler);
}
