#pragma once

/// The Qt application object of a host that has none. A host that is a Qt program keeps its own, untouched.
class ModuleApplication {
public:
    /// Makes an application object with an argument count of 0 when the process has none. On a machine without a
    /// display it works without windows. The process's locale stays as it was.   [host main]
    static void Ensure();
    /// Ends the application object if the module made it.   [host main]
    static void End();
};
