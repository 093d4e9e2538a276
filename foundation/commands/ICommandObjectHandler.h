#pragma once

/// Is told of the life of a command, to tie somebody's request to it. userData is what the command was created with.
class ICommandObjectHandler {
public:
    /// The command exists.   [thread: the creator's]
    virtual void OnCommandCreated(void* userData) = 0;

    /// The command is about to go. Comes exactly once for each OnCommandCreated.   [thread: whichever destroys it]
    virtual void OnCommandDestroyed(void* userData) = 0;

protected:
    virtual ~ICommandObjectHandler() = default;
};
