#include "XmlTree.h"

#include <algorithm>

#include <tinyxml.h>

#include "GuardedXml.h"

namespace {

/// Levels of elements from the root of its tree down to a node, that one included. A document is no level.
int LevelOf(const TiXmlNode& node) {
    int level = 0;
    for (const TiXmlNode* at = &node; at != nullptr && at->ToElement() != nullptr; at = at->Parent())
        ++level;
    return level;
}

bool IsInside(const TiXmlNode& node, const TiXmlNode& ancestor) {
    const TiXmlNode* at = &node;
    while (at != nullptr && at != &ancestor)
        at = at->Parent();
    return at != nullptr;
}

} // namespace

XmlTree::XmlTree(std::unique_ptr<TiXmlNode> root)
    : m_root(std::move(root)) {}

XmlTree::~XmlTree() = default;

/// A node without a parent is the root of a tree that has not joined another one.
XmlTree::AppendResult XmlTree::Append(const std::shared_ptr<XmlTree>& tree, TiXmlNode& parent,
                                      const std::shared_ptr<XmlTree>& childTree, TiXmlNode& child) {
    if (child.Parent() != nullptr)
        return AppendResult::HasParent;
    if (IsInside(parent, child))
        return AppendResult::InsideItself;
    const int height = LevelOf(parent) + childTree->m_height;
    if (height > XmlLimits().depth)
        return AppendResult::TooDeep;
    parent.LinkEndChild(childTree->m_root.release());
    childTree->m_joined = tree;
    XmlTree* whole = tree.get();
    while (whole->m_joined != nullptr)
        whole = whole->m_joined.get();
    whole->m_height = std::max(whole->m_height, height);
    return AppendResult::Done;
}

QByteArray ToXmlText(const QString& text) {
    return QString::fromLatin1(text.toLatin1()).toUtf8();
}

QString FromXmlText(const char* text) {
    return QString::fromUtf8(text);
}

void RefuseXmlText(QScriptContext* context) {
    context->throwError(QScriptContext::RangeError, QStringLiteral("XMLElement: no memory for the text"));
}
