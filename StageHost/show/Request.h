#pragma once

#include <cstdint>
#include <string>

namespace stagehost {

/// The operations of the links that name an object of the show.
enum class RequestKind {
    OpenUserScreen,
    CloseUserScreen,
    GotoPage,
    StartTask,
    PauseTask,
    StopTask,
    GotoLabel,
    GotoLine,
    GotoTime,
    LoadShow,
    GetObjectList,
    GetObject,
    SetProperty,
    SetPropertyAsInt,
    GetProperty,
    GetPropertyAsInt,
    Perform
};

/// One request of a script. All texts are Latin-1; what an operation does not have is empty or 0.
struct Request {
    RequestKind kind;
    std::string object{};       ///< the object's name
    std::string text{};         ///< label, property, action
    std::string value{};        ///< value, parameter text
    std::int32_t number = 0;    ///< page, line, time, mode, type, depth, position, value
    std::int32_t left = 0;      ///< OpenUserScreen
    std::int32_t top = 0;       ///< OpenUserScreen
    const void* link = nullptr; ///< who asks: what never ends is given up when this link ends
};

/// A text of a caller that may be null.
inline std::string TextOrEmpty(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

/// Requests without their object.
inline Request NumberRequest(RequestKind kind, std::int32_t number) {
    Request request{kind};
    request.number = number;
    return request;
}

inline Request TextRequest(RequestKind kind, const char* text, const char* value = nullptr) {
    return Request{kind, {}, TextOrEmpty(text), TextOrEmpty(value)};
}

} // namespace stagehost
