#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <QString>

namespace stagehost {

/// Finds in a long list the text that another one is most like, by DistanceBetween. What
/// a search takes is bounded: the 256 whose letters are most alike are compared in order, and of those no more than can
/// still be nearer. Among up to 256 texts it is always the nearest.   [one thread]
class NearTexts {
public:
    void Add(const QString& text);
    std::size_t Count() const { return m_texts.size(); }

    /// @return the place of the nearest, the first one of several; Count() when there is none.
    std::size_t Nearest(const QString& text) const;

private:
    /// How often each letter stands in a text, several letters counted as one.
    using Letters = std::array<std::uint8_t, 64>;
    static Letters LettersOf(const QString& text);

    struct Text {
        QString text;
        Letters letters;
    };

    std::vector<Text> m_texts;
};

} // namespace stagehost
