#include <QScriptEngine>

#include "DeviceFixture.h"
#include "HostileServer.h"
#include "HttpDeadline.h"
#include "ManualScripts.h"
#include "MScriptMngRemote.h"

// The HTTP client in a device: answers become calls of script functions, and stopping the device ends all of it.

namespace {

const char* const kFetcher = R"(({
    Fetch: function (url) {
        var id = QCalverin.PostponeResult();
        var client = QCalverin.CreateHTTPClient();
        client.on("response", function (response, error, sender) {
            QCalverin.SetResult(id, [error.errorCode, error.errorText, response.statusCode, response.data.toString(),
                                     response.headers, sender === client, arguments.length].join("|"));
        });
        client.get(url);
    },
    Progress: function (url) {
        var id = QCalverin.PostponeResult();
        var seen = [];
        var client = QCalverin.CreateHTTPClient();
        client.on("download_progress", function (progress, sender) {
            seen.push(typeof progress + " " + (sender === client));
        });
        client.on("response", function () { QCalverin.SetResult(id, seen.pop()); });
        client.get(url);
    },
    Chain: function (url, count) {
        var id = QCalverin.PostponeResult();
        var client = QCalverin.CreateHTTPClient();
        var left = Number(count);
        client.on("response", function (response, error, sender) {
            left -= 1;
            if (left > 0)
                sender.get(url);
            else
                QCalverin.SetResult(id, "done");
        });
        client.get(url);
    },
    Begin: function (url, count) {
        for (var i = 0; i < Number(count); i += 1)
            QCalverin.CreateHTTPClient().get(url);
        return "begun";
    }
}))";

void AnswerHello(Peer& peer) {
    while (!peer.ReadRequest().empty())
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello");
}

class ScriptRequests : public DeviceFixture {};

} // namespace

TEST_F(ScriptRequests, AnAnswerReachesTheListener) {
    const HostileServer server(&AnswerHello);
    GivenScript(kFetcher);
    EXPECT_EQ(Call("Fetch", {server.Address()}), "0|Undefined error|200|hello|Content-Length:5|true|3");
}

TEST_F(ScriptRequests, AFailureReachesTheListener) {
    GivenScript(kFetcher);
    EXPECT_EQ(Call("Fetch", {"file:///etc/hostname"}),
              "301|the Network Access API cannot honor the request because the protocol is not known|0|||true|3");
}

TEST_F(ScriptRequests, ProgressIsABooleanAsItIsMeant) {
    const HostileServer server(&AnswerHello);
    GivenScript(kFetcher);
    EXPECT_EQ(Call("Progress", {server.Address()}), "boolean true");
}

TEST_F(ScriptRequests, AListenerMaySendTheNextRequest) {
    const HostileServer server(&AnswerHello);
    GivenScript(kFetcher);
    EXPECT_EQ(Call("Chain", {server.Address(), "50"}), "done");
}

TEST_F(ScriptRequests, StopReturnsWhileServersAreSilent) {
    HostileServer server([](Peer& peer) { peer.WaitForClose(); });
    GivenScript(kFetcher);
    EXPECT_EQ(Call("Begin", {server.Address(), "10"}), "begun");
    ASSERT_TRUE(server.WaitForConnections(10));
    const auto begin = std::chrono::steady_clock::now();
    device->Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_TRUE(server.WaitUntilAllClosed());
    EXPECT_EQ(Error(), "");
}

TEST_F(ScriptRequests, AnswersOnTheirWayToAStoppedScriptAreDropped) {
    HostileServer server(&AnswerHello);
    GivenScript(kFetcher);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(Call("Begin", {server.Address(), "3"}), "begun");
        device->Stop();
        device->Start();
    }
    EXPECT_TRUE(server.WaitUntilAllClosed());
    EXPECT_EQ(Call("Fetch", {server.Address()}), "0|Undefined error|200|hello|Content-Length:5|true|3");
}

TEST_F(ScriptRequests, ReleaseReturnsWhileServersAreSilent) {
    HostileServer server([](Peer& peer) { peer.WaitForClose(); });
    GivenScript(kFetcher);
    EXPECT_EQ(Call("Begin", {server.Address(), "10"}), "begun");
    ASSERT_TRUE(server.WaitForConnections(10));
    EndDevice();
    EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(ScriptRequests, AScriptThatIsOnlyLookedAtSendsNothing) {
    const HostileServer server(&AnswerHello);
    QScriptEngine looking;
    MScriptMngRemote bridge(nullptr, nullptr, nullptr, nullptr, &looking);
    looking.globalObject().setProperty(QStringLiteral("QCalverin"), looking.newQObject(&bridge));
    const QString script =
        QStringLiteral("var client = QCalverin.CreateHTTPClient(); client.on('response', function () {});"
                       "client.get('%1'); client.addHeader('', 'A', '1')");
    const QScriptValue value = looking.evaluate(script.arg(QString::fromStdString(server.Address())));
    EXPECT_EQ(value.toString(), QStringLiteral("A:1"));
    bridge.ReleaseScriptObjects();
    EXPECT_EQ(server.Connections(), 0);
}

TEST_F(ScriptRequests, WithoutEngineThereIsNoClient) {
    MScriptMngRemote bridge(nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(bridge.CreateHTTPClient().isValid());
}

TEST_F(ScriptRequests, AClientOfAStoppedScriptIsNoLongerThere) {
    GivenScript("({ Make: function () { kept = QCalverin.CreateHTTPClient(); },"
                "   Use: function () { try { kept.get('http://127.0.0.1:1/'); return 'sent'; }"
                "                      catch (error) { return 'gone'; } } })");
    Call("Make");
    EXPECT_EQ(Call("Use"), "sent");
    device->Stop();
    device->Start();
    EXPECT_EQ(Call("Use"), "gone");
}

TEST_F(ScriptRequests, TheScriptsOfTheManualWork) {
    const HostileServer server([](Peer& peer) {
        for (std::string request = peer.ReadRequest(); !request.empty(); request = peer.ReadRequest()) {
            const std::string digit = request.substr(5, 1);
            peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\n" + digit);
        }
    });
    const std::vector<std::string> scripts = ScriptsOfTheManual(HTTP_MANUAL);
    ASSERT_EQ(scripts.size(), 3U);
    GivenScript(scripts[0]);
    EXPECT_EQ(Call("Fetch", {server.Address("/7")}), "200 7");
    EXPECT_EQ(Call("Fetch", {"ftp://127.0.0.1/"}),
              "failed: the Network Access API cannot honor the request because the protocol is not known");
    WhenTextIsLoaded(scripts[1]);
    EXPECT_EQ(Call("FetchAll", {server.Address("/"), "4"}), "0,1,2,3");
    WhenTextIsLoaded(scripts[2]);
    EXPECT_EQ(Call("Headers"), "2 Accept 7");
}
