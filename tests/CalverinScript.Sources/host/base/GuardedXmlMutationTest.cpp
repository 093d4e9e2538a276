#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <QThread>

#include "GuardedXml.h"
#include "ModuleResources.h"

namespace {

constexpr int kTexts = 20000;
constexpr unsigned int kSeed = 20240817;
constexpr unsigned int kMutatingStack = 512 * 1024;

/// Pieces that markup is made of, broken ones among them.
const char* const kPieces[] = {"<",
                               ">",
                               "/>",
                               "</",
                               "<a>",
                               "</a>",
                               "<a ",
                               "a=",
                               "\"",
                               "'",
                               "=",
                               "<!--",
                               "-->",
                               "<![CDATA[",
                               "]]>",
                               "<?xml ",
                               "?>",
                               "<!",
                               "</x \"",
                               "</x '>",
                               "&amp;",
                               "&#x;",
                               "&#99999999;",
                               "&",
                               "\xF0",
                               "\xC3",
                               "\x80",
                               "\xEF\xBB\xBF",
                               " ",
                               "\n",
                               "/",
                               "<r a=\"1\" a=\"2\">",
                               "version=",
                               "standalone=\"",
                               "<\xC3\xA9>",
                               "]",
                               "-"};

/// Makes texts from others by small damages, the same ones in every run.
class Mutator {
public:
    explicit Mutator(std::vector<std::string> seeds)
        : m_seeds(std::move(seeds)) {}

    std::string Next() {
        std::string text = m_seeds[Below(m_seeds.size())];
        for (std::size_t i = 1 + Below(8); i > 0; --i)
            Damage(text);
        return text;
    }

private:
    std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }

    void Damage(std::string& text) {
        const std::size_t at = Below(text.size() + 1);
        switch (Below(7)) {
        case 0:
            text.resize(at);
            break;
        case 1:
            text.erase(at, Below(20));
            break;
        case 2:
            if (at < text.size())
                text[at] = static_cast<char>(m_random());
            break;
        case 3:
            text.insert(at, Piece());
            break;
        case 4:
            text.insert(at, text.substr(Below(text.size() + 1), Below(200)));
            break;
        case 5:
            InsertMany(text, at, 1 + Below(40));
            break;
        default:
            InsertMany(text, at, Below(100) == 0 ? 20000 : 300);
            break;
        }
    }

    void InsertMany(std::string& text, std::size_t at, std::size_t count) {
        const std::string piece = Piece();
        std::string many;
        for (std::size_t i = 0; i < count; ++i)
            many += piece;
        text.insert(at, many);
    }

    std::string Piece() { return kPieces[Below(std::size(kPieces))]; }

    const std::vector<std::string> m_seeds;
    std::mt19937 m_random{kSeed};
};

/// Parses, prints and parses again, as the module does with texts from outside.
bool RoundTrips(const std::string& text) {
    TiXmlDocument document;
    if (!ParseXml(document, text.c_str()))
        return false;
    TiXmlDocument again;
    ParseXml(again, PrintXml(document).c_str());
    return true;
}

TEST(ParseXml, OfDamagedTextsNeitherCrashesNorOverflowsASmallStack) {
    Mutator mutator({FindModuleResource(ModuleResource::RawData, kDefinitionId).toStdString(), "<r/>",
                     "<r a=\"1\">text</r>",
                     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r><!-- c --><![CDATA[x]]></r>",
                     "<a><b><c d='1' e=\"2\"/></b>\xC3\xA9</a>", ""});
    int parsed = 0;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (int i = 0; i < kTexts; ++i)
            parsed += RoundTrips(mutator.Next()) ? 1 : 0;
    }));
    thread->setStackSize(kMutatingStack);
    thread->start();
    ASSERT_TRUE(thread->wait());
    EXPECT_GT(parsed, kTexts / 50) << "too few texts got past the guard for the run to mean anything";
    EXPECT_LT(parsed, kTexts);
}

} // namespace
