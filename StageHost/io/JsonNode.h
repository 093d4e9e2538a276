#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <QJsonValue>
#include <QString>
#include <QStringList>

namespace stagehost {

struct ShowKey;

/// A name as complaints show it, in double quotes.
QString Quoted(const QString& text);

/// A value of a JSON text together with its place in it, so that a complaint can name that place:
/// "devices[1].script: expected text".
///
/// Asking for another type than the value has notes a complaint and gives a neutral value, so that one reading finds
/// all that is wrong. A value that is missing gives the neutral value without a complaint.
class JsonNode {
public:
    /// @param complaints collects what is wrong; must outlive the node and all nodes made from it.
    JsonNode(QJsonValue value, QString path, QStringList& complaints);

    bool IsMissing() const { return m_value.isUndefined(); }
    bool IsObject() const { return m_value.isObject(); }
    bool IsText() const { return m_value.isString(); }
    bool IsTrue() const { return m_value.isBool() && m_value.toBool(); }
    bool IsFalse() const { return m_value.isBool() && !m_value.toBool(); }

    /// No text of a show has a NUL, where everything outside would end it.
    QString Text() const;
    QString TextOr(const QString& missing) const;
    std::optional<double> Number() const;
    std::optional<int> Whole(int lowest, int highest = std::numeric_limits<int>::max()) const;

    /// Text as it is, and numbers and truth values in their text form.
    QString Scalar() const;

    /// The value itself, where it is a scalar; otherwise complains.
    QJsonValue ScalarValue() const;

    /// The text without a complaint about its type: the neutral value for what is none.
    QString PlainText() const { return m_value.toString(); }

    /// Text and Scalar as the 8-bit text of the contract; complains about characters that it does not have.
    std::string BorderText() const { return Border(Text()); }
    std::string BorderScalar() const { return Border(Scalar()); }
    std::string Border(const QString& text) const;

    /// A member of an object; a missing one when there is none.
    JsonNode Member(const QString& name) const;
    QStringList MemberNames() const;

    /// The items of a list, without a complaint when it is none.
    std::vector<JsonNode> Items() const;

    /// The items of a list, in order; none when the value is missing.
    void ForEach(const std::function<void(const JsonNode&)>& call) const;

    /// Complains when this is no object, and about each member of another name.
    template <std::size_t Count>
    bool ExpectObject(const ShowKey (&keys)[Count]) const {
        return ExpectObject(keys, Count);
    }

    /// Complains when there is something that is no object.
    bool ExpectObjectOfAny() const;

    void Complain(const QString& what) const;
    void ComplainUnlessEmpty(const QString& what) const;

private:
    bool ExpectObject(const ShowKey* keys, std::size_t count) const;
    QString TextWithoutNul() const;
    bool Expect(bool right, const QString& what) const;

    QJsonValue m_value;
    QString m_path;
    QStringList& m_complaints;
};

/// Number as the shortest text that reads back as the same number; whole numbers without decimals.
QString NumberText(double number);

} // namespace stagehost
