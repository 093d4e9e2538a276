#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "CommandNumbers.h"
#include "ResultText.h"

/// @file
/// What a marshalled call keeps of its arguments. Its caller may be gone before the script thread gets to it: after a
/// time limit, or when the device is released. So the call owns what it hands to its slot.

/// An argument that is a value, or a pointer whose object the device keeps by other means.
template <typename Argument>
class OwnedArgument {
public:
    explicit OwnedArgument(Argument argument)
        : m_value(std::move(argument)) {}
    const Argument& Get() const { return m_value; }
    /// Writes what the slot left in the argument to the caller's own, once the call is complete.   [the caller's]
    void GiveBack(const Argument& /*callers*/) {}

private:
    Argument m_value;
};

/// A text of the host, which may be null.
template <>
class OwnedArgument<const char*> {
public:
    explicit OwnedArgument(const char* text)
        : m_text(text != nullptr ? std::optional<std::string>(text) : std::nullopt) {}
    const char* Get() const { return m_text ? m_text->c_str() : nullptr; }
    void GiveBack(const char* /*callers*/) {}

private:
    std::optional<std::string> m_text;
};

/// The texts of a function's arguments: null, or kArgumentCount texts.
template <>
class OwnedArgument<const char**> {
public:
    explicit OwnedArgument(const char** texts) {
        if (texts == nullptr)
            return;
        m_given = true;
        for (std::size_t i = 0; i < m_texts.size() && texts[i] != nullptr; ++i) {
            m_texts[i] = texts[i];
            m_pointers[i] = m_texts[i].c_str();
        }
    }
    OwnedArgument(const OwnedArgument&) = delete;
    OwnedArgument& operator=(const OwnedArgument&) = delete;
    const char** Get() { return m_given ? m_pointers.data() : nullptr; }
    void GiveBack(const char** /*callers*/) {}

private:
    bool m_given = false;
    std::array<std::string, kArgumentCount> m_texts;
    std::array<const char*, kArgumentCount> m_pointers{}; ///< into m_texts; the first null ends the list
};

/// The value that takes a result. The host may drop its own as soon as the request has ended, so the slot writes into a
/// value of the call's, and the caller, whose request is still open then, takes the text over.
template <>
class OwnedArgument<IData*> {
public:
    explicit OwnedArgument(IData* data)
        : m_given(data != nullptr) {}
    IData* Get() { return m_given ? &m_result : nullptr; }
    void GiveBack(IData* callers) {
        if (m_given)
            m_result.WriteTo(*callers);
    }

private:
    const bool m_given;
    ResultText m_result;
};
