#pragma once

#include <memory>
#include <new>

#include <QByteArray>
#include <QScriptContext>
#include <QString>

class TiXmlElement;
class TiXmlNode;

/// What keeps XML nodes alive: a document, or an element that is in no document yet, with all below it.
///
/// Each script object that shows a node shares its tree, so a node lives as long as anything that a script can still
/// ask about it. A tree whose root is appended elsewhere becomes a part of the other tree and keeps that one alive.
/// Depth is limited, since printing and deleting a tree recurse.   [the engine's thread]
class XmlTree {
public:
    enum class AppendResult { Done, HasParent, InsideItself, TooDeep };

    explicit XmlTree(std::unique_ptr<TiXmlNode> root);
    ~XmlTree();
    XmlTree(const XmlTree&) = delete;
    XmlTree& operator=(const XmlTree&) = delete;

    /// Links a node, which belongs to tree childTree, as the last child of parent, which belongs to this tree. It is
    /// moved, not copied. Nothing happens unless the result is Done.
    static AppendResult Append(const std::shared_ptr<XmlTree>& tree, TiXmlNode& parent,
                               const std::shared_ptr<XmlTree>& childTree, TiXmlNode& child);

private:
    std::unique_ptr<TiXmlNode> m_root; ///< null once it has become a part of another tree
    std::shared_ptr<XmlTree> m_joined; ///< that tree
    int m_height = 1;                  ///< levels of elements, kept for trees without a document
};

/// Text on its way to the XML library, which holds UTF-8. Characters that are not Latin-1 become "?".
QByteArray ToXmlText(const QString& text);
/// Text of the XML library; null gives an empty text.
QString FromXmlText(const char* text);

/// Throws the script error for a text that there is no memory for.   [script]
void RefuseXmlText(QScriptContext* context);

/// Runs work that makes texts. The engine cannot carry a C++ exception, so want of memory becomes the script error.
/// @return what the work gives; nothing after an error.   [script]
template <typename Work>
auto WithXmlText(QScriptContext* context, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        RefuseXmlText(context);
    }
    return decltype(work())();
}
