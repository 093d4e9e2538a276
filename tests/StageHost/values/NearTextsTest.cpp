#include "NearTexts.h"

#include <random>

#include <gtest/gtest.h>

#include "NearNames.h"

using namespace stagehost;

namespace {

/// The nearest by comparing with each of them.
std::size_t Compared(const QString& text, const std::vector<QString>& known) {
    std::size_t nearest = 0;
    for (std::size_t place = 1; place < known.size(); ++place) {
        if (DistanceBetween(text, known[place]) < DistanceBetween(text, known[nearest]))
            nearest = place;
    }
    return nearest;
}

} // namespace

TEST(NearTexts, OfNoneThereIsNoNearest) {
    EXPECT_EQ(NearTexts().Nearest(QStringLiteral("POWR 1")), 0U);
}

TEST(NearTexts, TheNearestIsTheOneThatComparingAllWouldFind) {
    std::mt19937 chance(3);
    for (int turn = 0; turn < 50; ++turn) {
        std::vector<QString> known;
        NearTexts texts;
        const auto some = [&] {
            QString text;
            for (unsigned size = chance() % 12; size > 0; --size)
                text += QChar(ushort("abcAB\r\x81"[chance() % 7]));
            return text;
        };
        for (int count = 0; count < 200; ++count) {
            known.push_back(some());
            texts.Add(known.back());
        }
        for (int asked = 0; asked < 20; ++asked) {
            const QString text = some();
            ASSERT_EQ(texts.Nearest(text), Compared(text, known)) << turn << ' ' << text.toStdString();
        }
    }
}

TEST(NearTexts, OneWithAWrongLetterIsFoundAmongManyThatAreLikeIt) {
    NearTexts texts;
    for (int number = 0; number < 20000; ++number)
        texts.Add(QStringLiteral("SET CHANNEL %1 TO %2 FADE 1000\\r").arg(number).arg(number % 101));
    EXPECT_EQ(texts.Nearest(QStringLiteral("SET CHANEL 12345 TO 23 FADE 1000\\r")), 12345U);
    EXPECT_EQ(texts.Nearest(QStringLiteral("SET CHANNEL 777 TO 70 FADE 1000\\r")), 777U);
    EXPECT_EQ(texts.Nearest(QStringLiteral("set channel 4711 to 65 fade 1000\\r")), 4711U);
}
