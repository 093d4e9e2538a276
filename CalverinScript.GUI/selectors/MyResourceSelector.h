#pragma once

#include <QByteArray>
#include <QWidget>

#include "KXPTypes.h"
#include "ResourceSignature.h"

class IResourceProvider;
class QLineEdit;
class QPushButton;

/// The resource of the host that a setting names: shown by its name, and chosen in a dialog of the host. Without a host that offers any
/// it is kept as it is.   [host main]
class MyResourceSelector : public QWidget {
    Q_OBJECT

public:
    explicit MyResourceSelector(QWidget* parent = nullptr);

    /// Shows a resource. A number that the provider does not know becomes 0.
    void SetResource(const ResourceSignature& signature);
    /// Who hands out resources. Borrowed for the widget's life; null takes the choice away.
    void SetProvider(IResourceProvider* provider);
    /// The window for the host's dialogs; 0 for none.
    void SetParentWindow(KXPWindow parent) { m_parentWindow = parent; }
    /// What the host's dialog for channels says of who asks: the device's name.
    void SetOwnerText(const QByteArray& text) { m_ownerText = text; }
    /// The signature as settings store it; the channel of an I/O resource is part of it.
    QString GetSignature() const;

Q_SIGNALS:
    /// The user has chosen a resource; the signature names it.
    void SignalChosen();

private Q_SLOTS:
    /// Lets the user choose a resource in the host's dialog.
    void SlotOpenWizard();

private:
    bool ChooseChannel(const ResourceRequest& request, ResourceSignature& chosen) const;
    bool ChooseResource(const ResourceRequest& request, ResourceSignature& chosen) const;
    void ForgetUnknown();
    void Refresh();

    ResourceSignature m_signature;
    IResourceProvider* m_provider = nullptr;
    KXPWindow m_parentWindow = 0;
    QByteArray m_ownerText; ///< for the host
    QLineEdit* m_name;
    QPushButton* m_wizardButton;
};
