#pragma once

#include <string>
#include <vector>

/// @file
/// How the arguments of `bind` and `send` are read. Pure functions, callable on any thread.

/// The most addresses of one `bind`.
inline constexpr std::size_t kMostBindAddresses = 16;

/// The addresses in a text with ";" between them. Those of 256 characters and more are dropped and do not count; what
/// follows the sixteenth is ignored.
std::vector<std::string> BindAddresses(const char* text);

/// A piece of a block of bytes.
struct DatagramPart {
    int offset;
    int length;
};

/// The piece that lies inside a block of so many bytes.
DatagramPart PartInside(int size, int offset, int length);
