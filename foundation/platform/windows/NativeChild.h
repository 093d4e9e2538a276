#pragma once

#include <cstdint>
#include <memory>

#include "NativeWindow.h"

/// A window of another toolkit that stands inside one of ours: where it stands, whether it can be worked with, and what
/// happens to it. All over a connection of our own; its owner notices nothing of that.   [host main]
class NativeChild {
public:
    enum class News {
        None,
        Focused, ///< it has got the keyboard
        Tab,     ///< the key was pressed in it
        BackTab, ///< the same with Shift
        AltKey,  ///< a key that may be one of a menu; LastKey tells which
        Gone
    };

    /// @param window borrowed; it may go at any time.
    explicit NativeChild(std::uintptr_t window);
    ~NativeChild();
    NativeChild(const NativeChild&) = delete;
    NativeChild& operator=(const NativeChild&) = delete;

    bool IsPartOf(std::uintptr_t parent) const;
    /// Whether it says of itself that it wants the keyboard.
    bool WantsKeyboard() const;
    /// Fits it into the window that it stands in. @param isShown whether to show it, too.
    void Fit(const NativeRect& place, bool isShown);
    /// Keeps the mouse away from it, or lets it come again.
    void SetEnabled(bool isEnabled);

    /// From now on there may be news. @return a descriptor that becomes readable then; -1 without a window system.
    int Watch();
    /// The next piece of news; None when there is no more.
    News TakeNews();
    const NativeKey& LastKey() const;

private:
    struct Part;
    const std::unique_ptr<Part> m_part;
};
