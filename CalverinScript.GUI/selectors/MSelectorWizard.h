#pragma once

#include "IObjectFactory.h"

/// What the module's three property selectors have in common: a name under which definition texts quote them, and the host's
/// root. The dialogs behind them are not there yet, so no object is made.
class MSelectorWizard : public IObjectFactory {
public:
    /// @param registeredName a literal.
    explicit MSelectorWizard(const char* registeredName)
        : m_registeredName(registeredName) {}
    MSelectorWizard(const MSelectorWizard&) = delete;
    MSelectorWizard& operator=(const MSelectorWizard&) = delete;
    virtual ~MSelectorWizard();

    const char* GetRegisteredName() const { return m_registeredName; }
    /// Borrowed for the module's life.   [host main]
    void SetHost(IMInterface* host) { m_host = host; }

    KXPCode QueryInterface(const char* name, void** out) override;
    /// The module owns its selectors by value; nothing is deleted. @return 0.   [host main]
    KXPCode Release() override;
    IMInterface* CreateObject(const char* name) override;

protected:
    IMInterface* m_host = nullptr;

private:
    const char* const m_registeredName;
};

/// Picks a script file of the library.
class MScriptSelectorWizard : public MSelectorWizard {
public:
    MScriptSelectorWizard()
        : MSelectorWizard("IScriptSelector") {}
};

/// Edits a script text.
class MScriptTextSelectorWizard : public MSelectorWizard {
public:
    MScriptTextSelectorWizard()
        : MSelectorWizard("IScriptTextSelector") {}
};

/// Picks a function of a script device.
class MFunctionSelectorWizard : public MSelectorWizard {
public:
    MFunctionSelectorWizard()
        : MSelectorWizard("IFunctionSelector") {}
};
