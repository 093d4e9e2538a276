#pragma once

#include <optional>
#include <string>

#include <QString>

#include "IObjectFactory.h"
#include "IPropertySelector.h"

class IModuleServices;
class QWinWidget;

/// What the module's three property selectors have in common: a name under which definition texts quote them, a factory of more of
/// their kind, and how what the user chooses becomes a parameter's text.   [all: host main]
///
/// The module owns one of each kind by value. Others are made by CreateObject and end with their Release, also while their own
/// dialog is open.
class MSelectorWizard : public IPropertySelector, public IObjectFactory {
public:
    /// One kind of selector. The texts are literals.
    struct Kind {
        const char* registeredName;
        const char* name;
        MSelectorWizard* (*make)(); ///< one that ends with its Release
    };

    MSelectorWizard(const MSelectorWizard&) = delete;
    MSelectorWizard& operator=(const MSelectorWizard&) = delete;
    virtual ~MSelectorWizard();

    const char* GetRegisteredName() const { return m_kind.registeredName; }
    /// For all selectors of the process: the host's root and the module, both borrowed until they are taken back with null.
    static void SetPlace(IMInterface* host, IModuleServices* module);

    // IMInterface, for both faces
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;

    // IPropertySelector
    std::uint32_t Reserved3(void* argument) override;
    const char* GetName() override;
    std::uint32_t Select(void* reserved1, IObjectParams* params, const char* name, void* reserved2) override;

    // IObjectFactory
    IMInterface* CreateObject(const char* name) override;

protected:
    /// Where a question is asked.
    struct Place {
        IMInterface* host = nullptr;       ///< may be null
        IModuleServices* module = nullptr; ///< may be null
    };
    /// What it is about.
    struct Subject {
        QString present;      ///< the parameter's text
        std::string deviceId; ///< the number of the device whose command it is; empty for none
    };

    /// @param kind lives for ever. @param endsWithRelease whether CreateObject has made it.
    MSelectorWizard(const Kind& kind, bool endsWithRelease);

    /// Asks the user. What `place` names may be gone when the dialog is closed.
    /// @return nothing when the user leaves it as it is.
    virtual std::optional<QString> Ask(QWinWidget& parent, const Place& place, const Subject& subject) const = 0;

private:
    static Place& ThePlace();
    std::uint32_t AskFor(IObjectParams* params, const char* name) const;
    void EndUnlessUsed();

    const Kind& m_kind;
    const bool m_endsWithRelease;
    int m_inside = 0;          ///< calls of Select that run
    bool m_isReleased = false; ///< ends when the last of them returns
    std::string m_name;        ///< what GetName gives
};

/// Picks a script file.
class MScriptSelectorWizard : public MSelectorWizard {
public:
    explicit MScriptSelectorWizard(bool endsWithRelease = false);

protected:
    std::optional<QString> Ask(QWinWidget& parent, const Place& place, const Subject& subject) const override;
};

/// Edits a script text.
class MScriptTextSelectorWizard : public MSelectorWizard {
public:
    explicit MScriptTextSelectorWizard(bool endsWithRelease = false);

protected:
    std::optional<QString> Ask(QWinWidget& parent, const Place& place, const Subject& subject) const override;
};

/// Picks a function of a script device.
class MFunctionSelectorWizard : public MSelectorWizard {
public:
    explicit MFunctionSelectorWizard(bool endsWithRelease = false);

protected:
    std::optional<QString> Ask(QWinWidget& parent, const Place& place, const Subject& subject) const override;
};
