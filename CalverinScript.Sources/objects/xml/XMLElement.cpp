#include "XMLElement.h"

#include <QScriptEngine>

#include <tinyxml.h>

#include "BufferMemory.h"
#include "GuardedXml.h"
#include "ScriptFacing.h"
#include "ScriptView.h"
#include "StoppableLoop.h"
#include "XmlTree.h"

namespace {

/// What a view is worth to the collector.
constexpr int kViewBytes = 512;

QString Complaint(XmlTree::AppendResult result) {
    switch (result) {
    case XmlTree::AppendResult::Done:
        break;
    case XmlTree::AppendResult::HasParent:
        return QStringLiteral("AppendChild: the element has been appended already");
    case XmlTree::AppendResult::InsideItself:
        return QStringLiteral("AppendChild: an element cannot become a part of itself");
    case XmlTree::AppendResult::TooDeep:
        return QStringLiteral("AppendChild: more than %1 levels of elements").arg(XmlLimits().depth);
    }
    return QString();
}

} // namespace

XMLElement::XMLElement(std::shared_ptr<XmlTree> tree, TiXmlElement* element)
    : m_tree(std::move(tree))
    , m_node(element) {}

XMLElement::~XMLElement() = default;

QScriptValue XMLElement::Wrap(QScriptEngine* engine, const std::shared_ptr<XmlTree>& tree, TiXmlElement* element) {
    return WrapOwnedByScript(*engine, new ScriptFacing<XMLElement>(tree, element), kViewBytes);
}

QScriptValue XMLElement::Create(QScriptEngine* engine, const QString& tagName) {
    auto element = std::make_unique<TiXmlElement>(ToXmlText(tagName).constData());
    TiXmlElement* const node = element.get();
    return Wrap(engine, std::make_shared<XmlTree>(std::move(element)), node);
}

void XMLElement::Append(QScriptContext* context, const std::shared_ptr<XmlTree>& tree, TiXmlNode& parent,
                        const QScriptValue& newChild) {
    const auto* child = qobject_cast<XMLElement*>(newChild.toQObject());
    if (child == nullptr || child->IsNull())
        return;
    const XmlTree::AppendResult result = XmlTree::Append(tree, parent, child->m_tree, *child->m_node);
    if (result != XmlTree::AppendResult::Done)
        context->throwError(Complaint(result));
}

QScriptValue XMLElement::Near(TiXmlElement* element) const {
    return Wrap(engine(), m_tree, element);
}

QString XMLElement::ToString() {
    return WithXmlText(context(), [this] {
        if (m_node == nullptr)
            return m_text;
        const std::string text = PrintXml(*m_node);
        if (IsTextPossible(static_cast<qint64>(text.size())))
            return m_text = QString::fromStdString(text);
        RefuseXmlText(context());
        return QString();
    });
}

QScriptValue XMLElement::FirstChildElement() const {
    return m_node != nullptr ? Near(m_node->FirstChildElement()) : QScriptValue();
}

QScriptValue XMLElement::FirstChildElement(const QString& sTagName) const {
    return WithXmlText(context(), [&] {
        return m_node != nullptr ? Near(m_node->FirstChildElement(ToXmlText(sTagName).constData())) : QScriptValue();
    });
}

QScriptValue XMLElement::NextSiblingElement() const {
    return m_node != nullptr ? Near(m_node->NextSiblingElement()) : QScriptValue();
}

QScriptValue XMLElement::NextSiblingElement(const QString& sTagName) const {
    return WithXmlText(context(), [&] {
        return m_node != nullptr ? Near(m_node->NextSiblingElement(ToXmlText(sTagName).constData())) : QScriptValue();
    });
}

void XMLElement::AppendChild(const QScriptValue& newChild) {
    if (m_node != nullptr)
        Append(context(), m_tree, *m_node, newChild);
}

void XMLElement::SetTagName(const QString& name) {
    if (m_node != nullptr)
        WithXmlText(context(), [&] { m_node->SetValue(ToXmlText(name).constData()); });
}

/// A text of the element; empty when there is none.
template <typename Read>
QString XMLElement::TextOf(Read read) const {
    return WithXmlText(context(), [&] { return m_node != nullptr ? FromXmlText(read(*m_node)) : QString(); });
}

QString XMLElement::GetTagName() const {
    return TextOf([](TiXmlElement& node) { return node.Value(); });
}

void XMLElement::SetText(const QString& text) {
    if (m_node == nullptr)
        return;
    WithXmlText(context(), [&] {
        auto node = std::make_unique<TiXmlText>(ToXmlText(text).constData());
        RemoveTexts();
        m_node->LinkEndChild(node.release());
    });
}

/// After a removal the walk goes back to the first child and on to the one behind it, so a text that has become first stays.
void XMLElement::RemoveTexts() {
    StoppableLoop loop(engine());
    TiXmlNode* child = m_node->FirstChild();
    while (child != nullptr && loop.GoesOn()) {
        if (child->ToText() != nullptr) {
            m_node->RemoveChild(child);
            child = m_node->FirstChild();
        }
        if (child != nullptr)
            child = child->NextSibling();
    }
}

QString XMLElement::GetText() const {
    return TextOf([](TiXmlElement& node) { return node.GetText(); });
}

void XMLElement::SetAttribute(const QString& name, const QString& value) {
    if (m_node != nullptr)
        WithXmlText(context(),
                    [&] { m_node->SetAttribute(ToXmlText(name).constData(), ToXmlText(value).constData()); });
}

void XMLElement::RemoveAttribute(const QString& name) {
    if (m_node != nullptr)
        WithXmlText(context(), [&] { m_node->RemoveAttribute(ToXmlText(name).constData()); });
}

QString XMLElement::Attribute(const QString& AttrName) const {
    return TextOf([&](TiXmlElement& node) { return node.Attribute(ToXmlText(AttrName).constData()); });
}
