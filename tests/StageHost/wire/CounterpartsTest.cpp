#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "ArtNetPacket.h"
#include "DmxListener.h"
#include "DmxSender.h"
#include "UniverseRecorder.h"

/// Universes that go to and come from programs that others wrote, in a second network at the other end of a cable.

using namespace stagehost;

namespace {

constexpr int kDeadlineMs = 60000;
const QString kHere = QStringLiteral("10.77.0.1");
const QString kThere = QStringLiteral("10.77.0.2");

QString Text(const char* text) {
    return QString::fromLatin1(text);
}

/// A program in the second network.
class Counterpart {
public:
    /// @param words the program and its arguments. @param asUser not as root, which some programs refuse.
    explicit Counterpart(const QStringList& words, bool asUser = false) {
        QStringList all{Text("--net=") + qEnvironmentVariable("OTHER_NETWORK")};
        if (asUser)
            all += QStringList{Text("unshare"), Text("--user"), Text("--map-user=1000"), Text("--map-group=1000")};
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(Text("nsenter"), all + words);
    }

    ~Counterpart() {
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    /// Waits until its output holds a text.
    bool WaitFor(const char* text, int within = kDeadlineMs) {
        QElapsedTimer clock;
        clock.start();
        while (!m_output.contains(text) && clock.elapsed() < within && m_process.state() != QProcess::NotRunning) {
            m_process.waitForReadyRead(100);
            m_output += m_process.readAll();
        }
        m_output += m_process.readAll();
        return m_output.contains(text);
    }

    bool WaitForEnd() {
        const bool ended = m_process.waitForFinished(kDeadlineMs);
        m_output += m_process.readAll();
        return ended && m_process.exitCode() == 0;
    }

    const QByteArray& Output() const { return m_output; }

private:
    QProcess m_process;
    QByteArray m_output;
};

bool HasNodePackage(const char* name) {
    return QFileInfo::exists(Text(NODE_PACKAGES "/") + Text(name));
}

#define SKIP_WITHOUT_NODE_PACKAGE(name)                                                                                \
    if (!HasNodePackage(name))                                                                                         \
    GTEST_SKIP() << "there is no npm package " << name << "; cmake/npm-packages installs it"

QStringList Node(const QStringList& words) {
    return QStringList{Text("env"), Text("NODE_PATH=" NODE_PACKAGES), Text("node"),
                       Text(WIRE_TESTS "/counterpart.js")} +
           words;
}

class Counterparts : public testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("OTHER_NETWORK"))
            GTEST_SKIP() << "runs in networks of its own: tests/StageHost/wire/in_two_networks";
    }

    /// Begins to send levels 11 22 33 44.
    void Send(const DmxOutPlan& plan) {
        const std::size_t out = sender.Add(plan, sent);
        sender.Open(out);
        const std::uint8_t levels[] = {11, 22, 33, 44};
        EXPECT_TRUE(sender.Write(out, levels, 0, 4));
    }

    void Listen(const DmxInPlan& plan) {
        listener.Open(listener.Add(plan, heard));
        ASSERT_TRUE(heard.notes.WaitFor("state"));
    }

    DmxOutPlan SacnOut(std::uint16_t universe, bool multicast) const {
        DmxOutPlan plan;
        plan.universe = universe;
        plan.multicast = multicast;
        plan.networkInterface = multicast ? Text("here") : QString();
        plan.address = QHostAddress(kThere);
        return plan;
    }

    DmxInPlan SacnIn(std::uint16_t universe, bool multicast) const {
        DmxInPlan plan;
        plan.universe = universe;
        plan.multicast = multicast;
        plan.networkInterface = multicast ? Text("here") : QString();
        plan.address = QHostAddress(kHere);
        return plan;
    }

    DmxOutPlan ArtNetOut(std::uint16_t universe) const {
        DmxOutPlan plan = SacnOut(universe, false);
        plan.protocol = DmxProtocol::ArtNet;
        return plan;
    }

    DmxInPlan ArtNetIn(std::uint16_t universe) const {
        DmxInPlan plan = SacnIn(universe, false);
        plan.protocol = DmxProtocol::ArtNet;
        return plan;
    }

    UniverseRecorder sent;
    UniverseRecorder heard;
    DmxSender sender;
    DmxListener listener;
};

/// OLA with its sACN and Art-Net ports for universe 1.
class WithOla : public Counterparts {
protected:
    void SetUp() override {
        Counterparts::SetUp();
        if (IsSkipped())
            return;
        if (!QFileInfo::exists(Text("/usr/bin/olad")))
            GTEST_SKIP() << "there is no olad";
        WriteConfig("ola-e131.conf",
                    Text("enabled = true\nip = ") + kThere +
                        Text("\ninput_ports = 2\noutput_ports = 2\n"
                             "ignore_preview = true\nprepend_hostname = false\ndscp = 0\ndraft_discovery = false\n"
                             "revision = 0.46\n"));
        WriteConfig("ola-artnet.conf",
                    Text("enabled = true\nip = ") + kThere +
                        Text("\nalways_broadcast = false\nnet = 0\nsubnet = 0\n"
                             "output_ports = 4\nuse_limited_broadcast = false\nuse_loopback = false\n"
                             "short_name = OLA\nlong_name = OLA\n"));
        for (const char* plugin :
             {"dummy",    "espnet",  "ftdidmx",          "gpio",    "karate",   "kinet",    "milinst",
              "nanoleaf", "opendmx", "openpixelcontrol", "osc",     "pathport", "renard",   "sandnet",
              "shownet",  "spi",     "stageprofi",       "uartdmx", "usbdmx",   "usbserial"})
            WriteConfig((std::string("ola-") + plugin + ".conf").c_str(), Text("enabled = false\n"));
        ola.emplace(QStringList{Text("olad"), Text("--no-http"), Text("--no-register-with-dns-sd"), Text("-l"),
                                Text("3"), Text("-c"), folder.path()},
                    true);
        QElapsedTimer clock;
        clock.start();
        QString devices;
        while (!(devices.contains(Text("E1.31")) && devices.contains(Text("ArtNet"))) && clock.elapsed() < kDeadlineMs)
            devices = Ask({Text("ola_dev_info")});
        ASSERT_TRUE(devices.contains(Text("ArtNet"))) << devices.toStdString() << ola->Output().toStdString();
        for (const QString& line : devices.split(QLatin1Char('\n'))) {
            const QString number = line.section(QLatin1Char(' '), 1, 1).remove(QLatin1Char(':'));
            if (line.startsWith(Text("Device")) && line.contains(Text("E1.31")))
                e131 = number;
            if (line.startsWith(Text("Device")) && line.contains(Text("ArtNet")))
                artNet = number;
        }
    }

    static bool IsSkipped() { return testing::Test::IsSkipped() || testing::Test::HasFatalFailure(); }

    void WriteConfig(const char* name, const QString& text) {
        QFile file(folder.filePath(Text(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
        QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
        file.setPermissions(QFile::Permissions(0x6666));
    }

    /// Runs a program of OLA to its end. @return what it says.
    static QString Ask(const QStringList& words) {
        Counterpart program(words);
        program.WaitForEnd();
        return QString::fromUtf8(program.Output());
    }

    /// Joins a port of a device with universe 1 of OLA.
    void Patch(const QString& device, const char* port, bool input) {
        QStringList words{Text("ola_patch"), Text("-d"), device, Text("-p"), Text(port), Text("-u"), Text("1")};
        if (input)
            words += Text("-i");
        Counterpart program(words);
        EXPECT_TRUE(program.WaitForEnd()) << program.Output().toStdString();
    }

    /// Waits until OLA records a frame that begins with these levels.
    bool OlaHears(const QByteArray& levels) {
        const QString file = folder.filePath(Text("record"));
        Counterpart recorder({Text("ola_recorder"), Text("--record"), file, Text("--universes"), Text("1")});
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < kDeadlineMs) {
            recorder.WaitFor("a moment of patience", 200);
            QFile record(file);
            if (record.open(QIODevice::ReadOnly) && record.readAll().contains("1 " + levels))
                return true;
        }
        return false;
    }

    /// Has OLA send levels until they are heard.
    bool OlaIsHeard(const char* levels, const char* note) {
        for (int attempt = 0; attempt < 30; ++attempt) {
            Ask({Text("ola_set_dmx"), Text("-u"), Text("1"), Text("-d"), Text(levels)});
            for (const auto& told : heard.notes.All()) {
                if (told.rfind(note, 0) == 0)
                    return true;
            }
        }
        return heard.notes.WaitFor(note);
    }

    QTemporaryDir folder;
    std::optional<Counterpart> ola;
    QString e131;
    QString artNet;
};

} // namespace

TEST_F(Counterparts, ThePackageSacnHearsUsByUnicast) {
    SKIP_WITHOUT_NODE_PACKAGE("sacn");
    Counterpart receiver(Node({Text("sacn-receive"), Text("5"), kThere}));
    ASSERT_TRUE(receiver.WaitFor("ready")) << receiver.Output().toStdString();
    Send(SacnOut(5, false));
    EXPECT_TRUE(receiver.WaitFor("levels 11 22 33 44")) << receiver.Output().toStdString();
}

TEST_F(Counterparts, ThePackageSacnHearsUsByMulticast) {
    SKIP_WITHOUT_NODE_PACKAGE("sacn");
    Counterpart receiver(Node({Text("sacn-receive"), Text("5"), kThere}));
    ASSERT_TRUE(receiver.WaitFor("ready")) << receiver.Output().toStdString();
    Send(SacnOut(5, true));
    EXPECT_TRUE(receiver.WaitFor("levels 11 22 33 44")) << receiver.Output().toStdString();
}

TEST_F(Counterparts, WeHearThePackageSacnByUnicast) {
    SKIP_WITHOUT_NODE_PACKAGE("sacn");
    Listen(SacnIn(6, false));
    Counterpart other(Node({Text("sacn-send"), Text("6"), kThere, kHere, Text("7"), Text("8"), Text("255")}));
    EXPECT_TRUE(heard.notes.WaitFor("levels 1=7 2=8 3=255"));
    EXPECT_TRUE(heard.notes.WaitFor("hears \"other\""));
}

TEST_F(Counterparts, WeHearThePackageSacnByMulticast) {
    SKIP_WITHOUT_NODE_PACKAGE("sacn");
    Listen(SacnIn(6, true));
    Counterpart other(Node({Text("sacn-send"), Text("6"), kThere, Text("-"), Text("7"), Text("8"), Text("255")}));
    EXPECT_TRUE(heard.notes.WaitFor("levels 1=7 2=8 3=255"));
}

TEST_F(Counterparts, ThePackageDmxnetHearsUs) {
    SKIP_WITHOUT_NODE_PACKAGE("dmxnet");
    Counterpart receiver(Node({Text("artnet-receive"), Text("291")})); // net 1, sub-net 2, universe 3
    ASSERT_TRUE(receiver.WaitFor("ready")) << receiver.Output().toStdString();
    Send(ArtNetOut(291));
    EXPECT_TRUE(receiver.WaitFor("levels 11 22 33 44")) << receiver.Output().toStdString();
}

TEST_F(Counterparts, WeHearThePackageDmxnet) {
    SKIP_WITHOUT_NODE_PACKAGE("dmxnet");
    Listen(ArtNetIn(291));
    Counterpart other(Node({Text("artnet-send"), Text("291"), kHere, Text("9"), Text("0"), Text("3")}));
    EXPECT_TRUE(heard.notes.WaitFor("levels 1=9 3=3"));
}

TEST_F(WithOla, ItHearsOurSacnByMulticast) {
    Patch(e131, "0", true);
    Send(SacnOut(1, true));
    EXPECT_TRUE(OlaHears("11,22,33,44")) << ola->Output().toStdString();
}

TEST_F(WithOla, WeHearItsSacnByMulticast) {
    Listen(SacnIn(1, true));
    Patch(e131, "0", false);
    EXPECT_TRUE(OlaIsHeard("5,6,7", "levels 1=5 2=6 3=7")) << ola->Output().toStdString();
}

TEST_F(WithOla, ItHearsOurArtNet) {
    Patch(artNet, "0", true);
    Send(ArtNetOut(1));
    EXPECT_TRUE(OlaHears("11,22,33,44")) << ola->Output().toStdString();
}

TEST_F(WithOla, ItFindsUsByArtPollAndWeHearItsArtNet) {
    Listen(ArtNetIn(1));
    Patch(artNet, "0", false);
    EXPECT_TRUE(OlaIsHeard("5,6,7", "levels 1=5 2=6 3=7")) << ola->Output().toStdString();
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
