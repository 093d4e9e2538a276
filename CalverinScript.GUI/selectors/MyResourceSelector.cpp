#include "MyResourceSelector.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include "HostText.h"
#include "IIOResource.h"
#include "IResourceProvider.h"
#include "Pictures.h"

namespace {

constexpr int kNameWidth = 200; ///< as the other fields of the form

bool HasChannel(const ResourceSignature& signature) {
    const auto request = RequestOf(signature);
    return request && request->family == KXP_IO_RESOURCE;
}

IMInterface* FindIn(IResourceProvider& provider, const ResourceRequest& request) {
    return provider.GetResource(static_cast<std::uint32_t>(request.family), request.resourceId,
                                static_cast<std::uint32_t>(request.subtype));
}

/// @return null when the host has no such resource or channel.
const char* NameIn(IResourceProvider& provider, const ResourceRequest& request) {
    IMInterface* const resource = FindIn(provider, request);
    if (request.family != KXP_IO_RESOURCE) {
        auto* proxy = QueryFace<IResourceProxy>(resource, "IResourceProxy");
        return proxy != nullptr ? proxy->GetName() : nullptr;
    }
    auto* io = QueryFace<IIOResource>(resource, "IIOResource");
    IIOResourceChannel* const channel =
        io != nullptr ? io->GetChannel(static_cast<std::uint32_t>(request.channelType), request.channelIndex) : nullptr;
    return channel != nullptr ? channel->GetName() : nullptr;
}

} // namespace

MyResourceSelector::MyResourceSelector(QWidget* parent)
    : QWidget(parent)
    , m_name(new QLineEdit(this))
    , m_wizardButton(new QPushButton(this)) {
    RegisterPictures();
    m_name->setObjectName(QStringLiteral("lineEdit"));
    m_name->setReadOnly(true);
    m_name->setFixedWidth(kNameWidth);
    m_wizardButton->setObjectName(QStringLiteral("pushButtonWizard"));
    m_wizardButton->setIcon(QIcon(QStringLiteral(":/wizard")));
    m_wizardButton->setAccessibleName(tr("Choose a resource"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_name);
    row->addWidget(m_wizardButton);
    setFocusProxy(m_name);
    connect(m_wizardButton, &QPushButton::clicked, this, &MyResourceSelector::SlotOpenWizard);
    SetProvider(nullptr);
}

void MyResourceSelector::SetResource(const ResourceSignature& signature) {
    m_signature = signature;
    ForgetUnknown();
    Refresh();
}

void MyResourceSelector::SetProvider(IResourceProvider* provider) {
    m_provider = provider;
    m_wizardButton->setEnabled(provider != nullptr);
    ForgetUnknown();
    Refresh();
}

void MyResourceSelector::ForgetUnknown() {
    const auto request = RequestOf(m_signature);
    if (m_provider == nullptr || !request)
        return;
    if (request->resourceId < 0 || FindIn(*m_provider, *request) == nullptr)
        m_signature.resourceId = 0;
}

void MyResourceSelector::Refresh() {
    const auto request = RequestOf(m_signature);
    const char* const name = m_provider != nullptr && request ? NameIn(*m_provider, *request) : nullptr;
    m_name->setText(name != nullptr ? FromHostText(name) : QStringLiteral("Unspecified"));
    m_name->setCursorPosition(0);
}

/// The form may have been made anew when the host's dialog is left.
void MyResourceSelector::SlotOpenWizard() {
    const auto request = RequestOf(m_signature);
    if (m_provider == nullptr || !request)
        return;
    const QPointer<MyResourceSelector> kept(this);
    ResourceSignature chosen = m_signature;
    const bool isChosen =
        request->family == KXP_IO_RESOURCE ? ChooseChannel(*request, chosen) : ChooseResource(*request, chosen);
    if (!isChosen || kept == nullptr)
        return;
    m_signature = chosen;
    Q_EMIT SignalChosen();
    if (kept != nullptr)
        Refresh();
}

bool MyResourceSelector::ChooseChannel(const ResourceRequest& request, ResourceSignature& chosen) const {
    const QByteArray ownerText = m_ownerText;
    IIOResourceChannel* const channel = m_provider->SelectChannel(static_cast<std::uint32_t>(request.channelType),
                                                                  ownerText.constData(), m_parentWindow);
    if (channel == nullptr)
        return false;
    auto* proxy = QueryFace<IResourceProxy>(channel->GetResource(), "IResourceProxy");
    if (proxy == nullptr)
        return false;
    chosen.channelIndex = channel->GetChannelIndex();
    chosen.resourceId = proxy->GetResourceID();
    return true;
}

bool MyResourceSelector::ChooseResource(const ResourceRequest& request, ResourceSignature& chosen) const {
    chosen.resourceId =
        m_provider->SelectResource(static_cast<std::uint32_t>(request.family),
                                   static_cast<std::uint32_t>(request.subtype), request.resourceId, m_parentWindow);
    return chosen.resourceId >= 0;
}

QString MyResourceSelector::GetSignature() const {
    QString text = QStringLiteral("{ \"Type\":\"%1\", \"ResourceID\":%2")
                       .arg(m_signature.type, QString::number(m_signature.resourceId));
    if (HasChannel(m_signature))
        text += QStringLiteral(", \"ChannelIndex\":%1").arg(m_signature.channelIndex);
    return text + QStringLiteral(" }");
}
