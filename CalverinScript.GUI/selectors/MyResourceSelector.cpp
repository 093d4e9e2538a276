#include "MyResourceSelector.h"

#include <QHBoxLayout>
#include <QLineEdit>

namespace {

constexpr int kNameWidth = 200; ///< as the other fields of the form

/// Resources of one of the families "Digital..." and "Analog..." are channels of an I/O device.
bool HasChannel(const QString& type) {
    return type.startsWith(QLatin1String("Digital")) || type.startsWith(QLatin1String("Analog"));
}

} // namespace

MyResourceSelector::MyResourceSelector(QWidget* parent)
    : QWidget(parent)
    , m_name(new QLineEdit(QStringLiteral("Unspecified"), this)) {
    m_name->setObjectName(QStringLiteral("lineEdit"));
    m_name->setReadOnly(true);
    m_name->setFixedWidth(kNameWidth);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_name);
    setFocusProxy(m_name);
}

void MyResourceSelector::SetResource(const ResourceSignature& signature) {
    m_signature = signature;
}

QString MyResourceSelector::GetSignature() const {
    QString text = QStringLiteral("{ \"Type\":\"%1\", \"ResourceID\":%2")
                       .arg(m_signature.type, QString::number(m_signature.resourceId));
    if (HasChannel(m_signature.type))
        text += QStringLiteral(", \"ChannelIndex\":%1").arg(m_signature.channelIndex);
    return text + QStringLiteral(" }");
}
