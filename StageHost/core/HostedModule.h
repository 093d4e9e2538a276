#pragma once

#include <memory>
#include <string>

#include <QLibrary>
#include <QString>

#include "Host.h"
#include "IKXPModule.h"

namespace stagehost {

/// The module: its file, loaded by name, and the one object that
/// its entry point gives. Knows the module by the contract alone.
class HostedModule {
public:
    /// @param host the root object for the module; must outlive this object.
    explicit HostedModule(Host& host);

    /// Ends the module properly if Load has succeeded: every device has been released before.   [host main]
    ~HostedModule();
    HostedModule(const HostedModule&) = delete;
    HostedModule& operator=(const HostedModule&) = delete;

    /// Loads the file, finds the entry point, initialises the module.
    /// @return empty on success, otherwise one line that says what is wrong.   [host main]
    QString Load(const QString& path);

    /// The module object after a successful Load.
    IKXPModule* Module() { return m_module; }

    Host& TheHost() { return m_host; }

private:
    QString FindModule(const QString& path);

    Host& m_host;
    QLibrary m_library;
    IKXPModule* m_module = nullptr;
};

/// Where the module file is looked for when no other is named: beside the program.
QString DefaultModulePath();

} // namespace stagehost
