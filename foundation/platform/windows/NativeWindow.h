#pragma once

#include <cstdint>
#include <memory>

/// @file
/// Windows of other programs and other toolkits, asked of the window system itself over a connection of our own.
/// Without a window system everything is unknown.   [host main]

/// Where a window stands on the screen, in device pixels.
struct NativeRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The rectangle of a window, and the same with the frame that a window manager drew around it. @return false when
/// there is no such window.
bool GetNativeFrame(std::uintptr_t window, NativeRect& inside, NativeRect& frame);

/// Gives a window the keyboard. @return false when it cannot have it.
bool FocusNativeWindow(std::uintptr_t window);

/// The window of a program that stands on the screen itself, above any of its parts.
std::uintptr_t FindTopWindow(std::uintptr_t window);

/// A key, in the window system's own numbers.
struct NativeKey {
    std::uint32_t code = 0;      ///< which key of the keyboard
    std::uint32_t modifiers = 0; ///< that were held before
    bool isPressed = true;
};

/// Tells a window of a key as if it had the keyboard. One that hears no keys hears nothing.
void SendNativeKey(std::uintptr_t window, const NativeKey& key);

/// Tells when a window is gone.
class NativeWindowWatch {
public:
    explicit NativeWindowWatch(std::uintptr_t window);
    ~NativeWindowWatch();
    NativeWindowWatch(const NativeWindowWatch&) = delete;
    NativeWindowWatch& operator=(const NativeWindowWatch&) = delete;

    /// A descriptor that becomes readable when there may be news; -1 without a window system.
    int Descriptor() const;
    /// Takes the news. @return whether the window is gone, or was never there.
    bool IsGone();

private:
    struct Connection;
    const std::uintptr_t m_window;
    const std::unique_ptr<Connection> m_connection;
    bool m_isGone = false;
};
