#pragma once

#include <functional>
#include <optional>

#include <QByteArray>
#include <QString>

namespace stagehost {

/// How a stream of bytes is cut into frames.
struct FramingRule {
    enum class Kind {
        None,      ///< each piece as it comes
        Delimited, ///< up to a delimiter, without it and without what stands in front of a start
        Fixed,     ///< so many bytes
        Prefixed,  ///< a length in front, which the frame is handed on without
        Own        ///< as a function of the script says
    };

    Kind kind = Kind::None;
    QByteArray delimiter;
    QByteArray start; ///< of a delimited frame; empty: it begins behind the one before
    int length = 0;
    int prefix = 0; ///< bytes of the length
    bool isLittle = false;
    bool countsPrefix = false; ///< the length counts the bytes of the length as well
    /// The bytes of the first frame in what has come; 0 while it is not whole.
    std::function<int(const QByteArray& bytes)> own;
    int most = 65536; ///< bytes of a frame
};

/// Cuts one stream. What belongs to no frame of a bearable size is thrown away, and told.   [one thread]
class Framing {
public:
    explicit Framing(FramingRule rule)
        : m_rule(std::move(rule)) {}

    void Take(const QByteArray& bytes) { m_waiting += bytes; }

    /// @param problem receives what is thrown away. @return the first whole frame, which is taken out; nothing when
    /// there is none.
    std::optional<QByteArray> Next(QString* problem);

private:
    std::optional<QByteArray> Piece();
    std::optional<QByteArray> Delimited();
    std::optional<QByteArray> OfLength(int size, int from);
    std::optional<QByteArray> Prefixed();
    std::optional<QByteArray> Own();

    const FramingRule m_rule;
    QByteArray m_waiting;
};

} // namespace stagehost
