#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QStringList>

namespace stagehost {

/// A JSON text of which single values are changed while all else stays as its author wrote it.
///
/// A place is told by names of members and numbers of items: {"devices", "0"}. The text is valid JSON; a mark
/// of UTF-8 in front of it stays.   [any]
class JsonText {
public:
    explicit JsonText(QByteArray text)
        : m_text(std::move(text)) {}

    const QByteArray& Text() const { return m_text; }

    /// Changes a member of the object at that place, or adds it behind the others.
    /// @return false when there is no object.
    bool SetMember(const QStringList& object, const QString& name, const QJsonValue& value);

    /// Adds an item behind the others of a list.
    /// @return false when there is no list.
    bool Append(const QStringList& list, const QJsonValue& value);

private:
    struct Span {
        int begin = -1;
        int end = -1;
    };
    struct Part {
        Span value;
        int begin; ///< of the name, or of the value in a list
        QString name;
    };

    Span Find(const QStringList& place) const;
    QVector<Part> PartsOf(Span container) const;
    int SkipBlank(int at) const;
    int SkipText(int at) const;
    int SkipValue(int at) const;
    void InsertBehind(Span container, const QVector<Part>& parts, const QByteArray& part);

    QByteArray m_text;
};

} // namespace stagehost
