#include "XMLDocument.h"

#include <limits>
#include <new>

#include <QScriptEngine>

#include <tinyxml.h>

#include "GuardedXml.h"
#include "XMLElement.h"
#include "XmlTree.h"

namespace {

/// Memory of a tree for each byte of its text, about.
constexpr qint64 kTreeBytesPerByte = 8;

int TreeBytes(const QByteArray& text) {
    return static_cast<int>(qMin<qint64>(text.size() * kTreeBytesPerByte, std::numeric_limits<int>::max()));
}

} // namespace

XMLDocument::XMLDocument()
    : XMLDocument(std::make_unique<TiXmlDocument>()) {}

XMLDocument::XMLDocument(std::unique_ptr<TiXmlDocument> document)
    : m_document(document.get())
    , m_tree(std::make_shared<XmlTree>(std::move(document))) {}

XMLDocument::~XMLDocument() = default;

void XMLDocument::Parse(const QString& sData) {
    try {
        const QByteArray text = ToXmlText(sData);
        m_refused = !IsXmlWithinLimits(text.constData(), qstrlen(text.constData()), true);
        if (m_refused)
            return;
        engine()->reportAdditionalMemoryCost(TreeBytes(text));
        ParseXml(*m_document, text.constData());
    } catch (const std::bad_alloc&) {
        m_refused = true;
    }
}

bool XMLDocument::Error() const {
    return m_refused || m_document->Error();
}

QScriptValue XMLDocument::DocumentElement() const {
    return XMLElement::Wrap(engine(), m_tree, m_document->FirstChildElement());
}

QScriptValue XMLDocument::CreateElement(const QString& tagName) const {
    return WithXmlText(context(), [&] { return XMLElement::Create(engine(), tagName); });
}

void XMLDocument::AppendChild(const QScriptValue& newChild) {
    XMLElement::Append(context(), m_tree, *m_document, newChild);
}
