#pragma once

#include <map>
#include <vector>

#include <QByteArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace stagehost {

/// What stood in the free places of requests, by the names that the file gives them.
using FreePlaces = std::map<QString, QByteArray>;

/// The bytes of one line of a traffic file, with the places that a person has marked in its "parts":
/// {"free": "[0-9]+"} is anything that the regular expression takes, {"free": 4} any four bytes, "as" beside it a name;
/// {"same": "NAME"} is what stood in the free place of that name last. In expressions a byte is a character.   [any]
class TrafficPattern {
public:
    TrafficPattern() = default;
    explicit TrafficPattern(const QByteArray& bytes);

    /// @return empty, or what is wrong.
    QString Read(const QJsonObject& line);

    struct Match {
        enum Kind { No, Begins, Whole } kind = No; ///< Begins: what is there may become a match
        int size = 0;                              ///< bytes of a whole match
    };

    /// How this fits the begin of what has come. A whole match leaves what stood in its free places.
    Match Fits(const QByteArray& begin, FreePlaces& places) const;

    /// The bytes, with the places filled in; a free place without a name becomes nothing.
    QByteArray Filled(const FreePlaces& places) const;

    void Append(const TrafficPattern& behind);

    bool IsEmpty() const { return m_parts.empty(); }
    bool HasMarks() const;
    bool HasFree() const;
    /// The names of its free places, or of those that are the same as one.
    QStringList NamesOfFree() const { return Names(false); }
    QStringList NamesOfSame() const { return Names(true); }
    /// The last byte, -1 where that is not certain.
    int LastByte() const;
    /// In one line, free places in angle brackets: %1CKSM <[0-9]+>\r
    QString ForPeople() const;
    /// The pieces behind each such byte; one piece when there are marks.
    std::vector<TrafficPattern> SplitBehind(char terminator) const;

private:
    struct Part {
        QByteArray bytes; ///< of a plain part
        QString free;     ///< a regular expression; empty: not free
        QString name;     ///< of a free place, or of the one that is the same
        bool isSame = false;
    };

    QString ReadPart(const QJsonValue& value);
    void AddPlain(const QByteArray& bytes);
    QStringList Names(bool ofSame) const;
    QString Expression(const FreePlaces& places) const;
    Match FitsPlain(const QByteArray& begin) const;

    std::vector<Part> m_parts;
};

} // namespace stagehost
