#pragma once

#include <cstddef>

/// Whether the process may still reserve that many bytes of address space in one piece. Nothing stays reserved.
/// [thread: any]
bool CanReserveAddressSpace(std::size_t bytes);
