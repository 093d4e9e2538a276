#pragma once

/// A room of a device in which somebody may still be, or wait, when the device ends. A device ends its rooms in one
/// order: all of them begin, then one after the other ends, and its memory goes once all have ended.   [all: host main]
class IEndingRoom {
public:
    /// Lets nobody in any more, and lets those go who wait for the host. Waits for nobody.
    virtual void BeginEnd() {}
    /// Ends what runs here. What does not follow is left to itself, and must not touch the host any more.
    virtual void End() {}
    /// Whether nobody is here any more.
    virtual bool HasEnded() const { return true; }

protected:
    ~IEndingRoom() = default;
};
