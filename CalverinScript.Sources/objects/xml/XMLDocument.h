#pragma once

#include <memory>

#include <QObject>
#include <QScriptable>
#include <QScriptValue>

class TiXmlDocument;
class XmlTree;

/// The script class `XMLDocument`: text into a tree, and the way to new elements.
/// It belongs to the script; its tree lives as long as the document or any view of
/// its elements does. Text is treated as in XMLElement.   [the engine's thread]
class XMLDocument : public QObject, public QScriptable {
    Q_OBJECT

public:
    XMLDocument();
    ~XMLDocument() override;

    /// Parses a text and adds what it holds to the document. What stands before an error stays. A text that is refused
    /// without being looked at, see GuardedXml.h, adds nothing and counts as an error.
    Q_INVOKABLE void Parse(const QString& sData);
    /// Whether the last Parse failed.
    Q_INVOKABLE bool Error() const;
    Q_INVOKABLE QScriptValue DocumentElement() const;
    /// A new element, in no document until it is appended.
    Q_INVOKABLE QScriptValue CreateElement(const QString& tagName) const;
    Q_INVOKABLE void AppendChild(const QScriptValue& newChild);

private:
    explicit XMLDocument(std::unique_ptr<TiXmlDocument> document);

    TiXmlDocument* const m_document; ///< owned by the tree
    const std::shared_ptr<XmlTree> m_tree;
    bool m_refused = false;
};
