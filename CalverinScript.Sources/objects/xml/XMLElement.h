#pragma once

#include <memory>

#include <QObject>
#include <QScriptable>
#include <QScriptValue>

class TiXmlElement;
class TiXmlNode;
class QScriptContext;
class XmlTree;

/// The script's view of one element, or of none. Several views may show the same element. A view belongs to the script
/// and keeps the element's tree alive.
///
/// Text goes in as Latin-1, other characters become "?". On a view of no element nothing happens and results are empty.
/// A text that there is no memory for is a script error.   [the engine's thread]
class XMLElement : public QObject, public QScriptable {
    Q_OBJECT

public:
    /// @param element null, or an element of the tree.
    XMLElement(std::shared_ptr<XmlTree> tree, TiXmlElement* element);
    ~XMLElement() override;

    /// A new view for a script.
    static QScriptValue Wrap(QScriptEngine* engine, const std::shared_ptr<XmlTree>& tree, TiXmlElement* element);
    /// A new element in no document, with a view of it for a script.
    static QScriptValue Create(QScriptEngine* engine, const QString& tagName);
    /// Links the element that a script value shows as the last child of a node.
    /// Values that show none are ignored; an element that has its place already, or
    /// would come to lie inside itself or too deep, is refused with a script error.
    static void Append(QScriptContext* context, const std::shared_ptr<XmlTree>& tree, TiXmlNode& parent,
                       const QScriptValue& newChild);

    /// The element and all below it as text, one tab for each level.
    Q_INVOKABLE QString ToString();
    /// The first child element, or the first of that name. A view of none when there is none, and nothing at all on a
    /// view of none; so for the sibling.
    Q_INVOKABLE QScriptValue FirstChildElement() const;
    Q_INVOKABLE QScriptValue FirstChildElement(const QString& sTagName) const;
    Q_INVOKABLE QScriptValue NextSiblingElement() const;
    Q_INVOKABLE QScriptValue NextSiblingElement(const QString& sTagName) const;
    Q_INVOKABLE void AppendChild(const QScriptValue& newChild);
    Q_INVOKABLE void SetTagName(const QString& name);
    Q_INVOKABLE QString GetTagName() const;
    /// Puts a text behind the child elements and takes text children away, though of two texts in front of the first
    /// element the second stays.
    Q_INVOKABLE void SetText(const QString& text);
    /// The text that is the first child.
    Q_INVOKABLE QString GetText() const;
    Q_INVOKABLE void SetAttribute(const QString& name, const QString& value);
    Q_INVOKABLE void RemoveAttribute(const QString& name);
    Q_INVOKABLE bool IsNull() const { return m_node == nullptr; }
    /// Empty when there is no such attribute.
    Q_INVOKABLE QString Attribute(const QString& AttrName) const;

private:
    QScriptValue Near(TiXmlElement* element) const;
    template <typename Read>
    QString TextOf(Read read) const;
    void RemoveTexts();

    const std::shared_ptr<XmlTree> m_tree;
    TiXmlElement* const m_node; ///< owned by the tree, may be null
    QString m_text;             ///< the last result of ToString
};
