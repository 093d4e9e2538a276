#pragma once

#include "MTCPClientSocket.h"

#include <mutex>

/// Calls every handler in turn. A handler may add and remove handlers meanwhile, itself among them.
template <class Call>
void MTCPClientSocket::TellHandlers(Call call) {
    const std::lock_guard<MLockedList<ITCPClientSocketHandler*>> guard(m_handlers);
    ITCPClientSocketHandler* handler = nullptr;
    for (std::size_t position = 0; m_handlers.Get(position, handler); ++position)
        call(*handler);
}
