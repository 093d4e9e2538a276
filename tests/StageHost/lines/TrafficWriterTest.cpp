#include "TrafficWriter.h"

#include <csignal>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include <QJsonDocument>

#include "TrafficFixture.h"

using namespace stagehost;

namespace {

class TrafficWriters : public testing::Test {
protected:
    QString Path() const { return m_folder.filePath(QStringLiteral("written.traffic")); }

    QByteArray Written() const {
        QFile file(Path());
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    static TrafficEntry Said(const QByteArray& bytes) { return {12, 1, TrafficEvent::Bytes, Side::Device, bytes}; }

    /// Whether each line of the file is whole.
    void EachLineIsWhole() const {
        const QByteArray text = Written();
        ASSERT_TRUE(text.endsWith('\n'));
        for (const QByteArray& line : text.left(text.size() - 1).split('\n'))
            EXPECT_TRUE(QJsonDocument::fromJson(line).isObject()) << line.toStdString();
    }

    const TrafficHead m_head{{LineKind::Tcp, QStringLiteral("beamer"), 4352, {}}, {}, QStringLiteral("today")};
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(TrafficWriters, WriteALineForEachThingThatHappens) {
    TrafficWriter writer({});
    ASSERT_EQ(writer.Open(Path(), m_head).toStdString(), "");
    writer.Add({0, 1, TrafficEvent::Opened, Side::Program, {}, QStringLiteral("127.0.0.1:5")});
    writer.Add(Said("PJLINK 0\r"));
    writer.Add({1500, 1, TrafficEvent::Reset, Side::Program, {}, QStringLiteral("Connection reset by peer")});
    writer.Add({2000, 0, TrafficEvent::End, Side::Program, {}});
    EXPECT_EQ(writer.Close().toStdString(), "");
    EXPECT_EQ(Written().toStdString(),
              R"({"began":"today","device":"beamer:4352","kind":"tcp","traffic":1})"
              "\n"
              R"({"at":0,"connection":1,"event":"opened","who":"127.0.0.1:5"})"
              "\n"
              R"({"at":0.012,"connection":1,"from":"device","text":"PJLINK 0\r"})"
              "\n"
              R"({"at":1.5,"by":"program","connection":1,"event":"reset","why":"Connection reset by peer"})"
              "\n"
              R"({"at":2,"event":"end"})"
              "\n");
}

TEST_F(TrafficWriters, HaveWholeLinesOnTheDiskBeforeTheEnd) {
    TrafficWriter writer({});
    ASSERT_EQ(writer.Open(Path(), m_head).toStdString(), "");
    writer.Add(Said("first"));
    EXPECT_TRUE(Eventually([&] { return Written().contains("first"); }));
    EachLineIsWhole();
}

TEST_F(TrafficWriters, ReplaceAnOlderRecordingAndNothingElse) {
    for (int round = 0; round < 2; ++round) {
        TrafficWriter writer({});
        EXPECT_EQ(writer.Open(Path(), m_head).toStdString(), "");
    }
    QFile other(Path());
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("my letters");
    other.close();
    TrafficWriter writer({});
    EXPECT_NE(writer.Open(Path(), m_head).toStdString(), "");
    EXPECT_EQ(Written().toStdString(), "my letters");
}

TEST_F(TrafficWriters, TellAFullQueueAndWhenThereIsRoomAgain) {
    bool hasRoom = false;
    TrafficWriter writer({[&] { hasRoom = true; }, {}});
    ASSERT_EQ(writer.Open(Path(), m_head).toStdString(), "");
    const QByteArray piece(1024 * 1024, '\x01');
    for (int count = 0; count < 64 && !writer.IsFull(); ++count)
        writer.Add(Said(piece));
    ASSERT_TRUE(writer.IsFull());
    EXPECT_TRUE(Eventually([&] { return hasRoom; }));
    EXPECT_FALSE(writer.IsFull());
    EXPECT_EQ(writer.Close().toStdString(), "");
    EachLineIsWhole();
}

TEST_F(TrafficWriters, OnAFullDiskEndWithWholeLinesAndTellItOnce) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{100 * 1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small); // a file of this process cannot become longer, as on a disk that is full
    int told = 0;
    TrafficWriter writer({{}, [&](const QString&) { ++told; }});
    ASSERT_EQ(writer.Open(Path(), m_head).toStdString(), "");
    for (int count = 0; count < 400; ++count)
        writer.Add(Said(QByteArray(999, 'x')));
    EXPECT_TRUE(Eventually([&] { return told > 0; }));
    setrlimit(RLIMIT_FSIZE, &before);
    writer.Add(Said("dropped"));
    EXPECT_FALSE(writer.IsFull());
    EXPECT_EQ(writer.Close().toStdString(), Path().toStdString() + ": File too large");
    EXPECT_EQ(told, 1);
    EXPECT_GT(Written().size(), 50 * 1000);
    EachLineIsWhole();
}
