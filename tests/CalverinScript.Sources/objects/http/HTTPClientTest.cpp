#include <algorithm>

#include <QFile>
#include <QSslConfiguration>
#include <QTemporaryDir>

#include "HttpFixture.h"
#include "WebServer.h"

// Whole requests against a real web server.

class WithAWebServer : public HttpFixture {
protected:
    static void SetUpTestSuite() { server = std::make_unique<WebServer>(); }
    static void TearDownTestSuite() { server.reset(); }
    void SetUp() override {
        ASSERT_EQ(server->Problem(), "");
        HttpFixture::SetUp();
    }
    static std::string At(const std::string& path) { return Quoted(server->Address(path)); }
    Answer Get(const std::string& path) { return AnswerTo("client.get(" + At(path) + ")"); }
    static QByteArray Content(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    std::string Folder() const { return folder.path().toStdString(); }

    static std::unique_ptr<WebServer> server;
    QTemporaryDir folder;
};
std::unique_ptr<WebServer> WithAWebServer::server;

/// The value of a header of an answer.
static std::string ValueOf(const Answer& answer, const std::string& name) {
    const std::string list = "\r\n" + answer.headers + "\r\n";
    const std::size_t at = list.find("\r\n" + name + ":");
    if (at == std::string::npos)
        return "(none)";
    const std::size_t begin = at + name.size() + 3;
    return list.substr(begin, list.find("\r\n", begin) - begin);
}

TEST_F(WithAWebServer, AFinishedGetHasTheCodeZeroAndTheBody) {
    const Answer answer = Get("/hello.txt");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.text, "Undefined error");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.data, "hello");
    EXPECT_EQ(ValueOf(answer, "Content-Length"), "5");
    EXPECT_EQ(answer.object, static_cast<MScriptCommonEvent*>(client.get()));
}

TEST_F(WithAWebServer, OneClientServesOneRequestAfterTheOther) {
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(Get("/hello.txt").data, "hello");
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
}

TEST_F(WithAWebServer, ErrorsOfTheServerHaveNumbersAndNoBody) {
    const std::pair<const char*, int> rows[] = {{"/nowhere", 203}, {"/forbidden/x", 201}, {"/private/x", 204}};
    for (const auto& [path, code] : rows) {
        const Answer answer = Get(path);
        EXPECT_EQ(answer.code, code) << path;
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.data, "");
        EXPECT_EQ(answer.headers, "");
    }
    EXPECT_EQ(Get("/nowhere").text, "the remote content was not found at the server (similar to HTTP error 404)");
}

TEST_F(WithAWebServer, RedirectsAreGivenToTheScript) {
    const Answer answer = Get("/moved");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.status, 302);
    EXPECT_EQ(ValueOf(answer, "Location"), server->Address("/hello.txt"));
}

TEST_F(WithAWebServer, ChunksAreJoined) {
    const Answer answer = Get("/chunked");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, "first second");
    EXPECT_EQ(ValueOf(answer, "Transfer-Encoding"), "chunked");
}

TEST_F(WithAWebServer, ASlowAnswerTellsItsProgress) {
    const Answer answer = Get("/slow/big");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data.size(), 1000000);
    const std::vector<int> progress = keeper.Progress("download_progress");
    ASSERT_GE(progress.size(), 2U);
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_LT(progress.front(), 100);
    EXPECT_EQ(progress.back(), 100);
}

TEST_F(WithAWebServer, CredentialsOpenAPrivatePlace) {
    const Answer answer = AnswerTo("client.get(" + At("/private/x") + ", '', '', 0, 'ada', 'engine')");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, "secret");
}

TEST_F(WithAWebServer, WrongCredentialsFailAfterOneMoreTry) {
    const int before = server->RequestsFor("/private/x?wrong");
    const Answer answer = AnswerTo("client.get(" + At("/private/x?wrong") + ", '', '', 0, 'ada', 'wrong')");
    EXPECT_EQ(answer.code, 204);
    EXPECT_LE(server->RequestsFor("/private/x?wrong") - before, 2);
}

TEST_F(WithAWebServer, TheCredentialsOfTheLastRequestStandForLaterChallenges) {
    EXPECT_EQ(AnswerTo("client.get(" + At("/private/x") + ", '', '', 0, 'ada', 'wrong')").code, 204);
    EXPECT_EQ(AnswerTo("client.get(" + At("/private/x") + ", '', '', 0, 'ada', 'engine')").data, "secret");
}

TEST_F(WithAWebServer, AcceptedCredentialsAreUsedAgainByTheSameClientAlone) {
    EXPECT_EQ(AnswerTo("client.get(" + At("/private/x") + ", '', '', 0, 'ada', 'engine')").data, "secret");
    EXPECT_EQ(Get("/private/x").data, "secret");
    HTTPClient another(&keeper);
    another.get(QString::fromStdString(server->Address("/private/x")));
    EXPECT_EQ(keeper.NextAnswer().code, 204);
}

TEST_F(WithAWebServer, ItemsAndHeadersGoOut) {
    const Answer answer = AnswerTo("client.get(" + At("/echo?z=0") + ", 'X-Sent:yes\\r\\nnone', 'x=1&y&z=a b')");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(ValueOf(answer, "X-Method"), "GET");
    EXPECT_EQ(ValueOf(answer, "X-Args"), "z=0&x=1&z=a%20b");
    EXPECT_EQ(ValueOf(answer, "X-Got"), "yes");
}

TEST_F(WithAWebServer, ATextIsPostedAsLatin1) {
    const Answer answer = AnswerTo("client.post(" + At("/echo") + ", 'Content-Type:text/plain', 'caf\\u00e9 \\u20ac')");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, "caf\xE9 ?");
    EXPECT_EQ(ValueOf(answer, "X-Method"), "POST");
    EXPECT_EQ(ValueOf(answer, "X-Type"), "text/plain");
}

TEST_F(WithAWebServer, ABufferIsPostedByteByByte) {
    const Answer answer =
        AnswerTo("client.post(" + At("/echo") + ", 'Content-Type:x/y', new Buffer([0, 255, 0, 13, 10]))");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, QByteArray("\0\xFF\0\r\n", 5));
}

TEST_F(WithAWebServer, ABufferThatChangesAfterwardsIsSentAsItWas) {
    const Answer answer =
        AnswerTo("var b = new Buffer('before'); client.post(" + At("/echo") + ", 'Content-Type:x/y', b); b.fill('x')");
    EXPECT_EQ(answer.data, "before");
}

TEST_F(WithAWebServer, APostWithoutBodyIsEmpty) {
    const Answer answer = AnswerTo("client.post(" + At("/echo") + ", 'Content-Type:x/y')");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, "");
    EXPECT_EQ(ValueOf(answer, "X-Method"), "POST");
}

TEST_F(WithAWebServer, ABodyOfAnotherKindSendsNothingAndRaisesNothing) {
    for (const char* body : {"5", "true", "null", "undefined", "({})", "[1]", "function () {}", "new String('x')"})
        for (const char* verb : {"post", "put"})
            Run(std::string("client.") + verb + "(" + At("/dav/never") + ", '', " + body + ")");
    EXPECT_EQ(Get("/hello.txt").data, "hello");
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
    EXPECT_EQ(server->RequestsFor("/dav/never"), 0);
}

TEST_F(WithAWebServer, FilesArePutAndDeleted) {
    const Answer put = AnswerTo("client.put(" + At("/dav/scene.txt") + ", 'Content-Type:x/y', 'act one')");
    EXPECT_EQ(put.code, 0);
    EXPECT_EQ(put.status, 201);
    EXPECT_EQ(server->Stored(QStringLiteral("scene.txt")), "act one");
    const Answer gone = AnswerTo("client.deleteResource(" + At("/dav/scene.txt") + ")");
    EXPECT_EQ(gone.code, 0);
    EXPECT_EQ(gone.status, 204);
    EXPECT_EQ(server->Stored(QStringLiteral("scene.txt")), "(no file)");
    EXPECT_EQ(AnswerTo("client.deleteResource(" + At("/dav/scene.txt") + ")").code, 203);
}

TEST_F(WithAWebServer, AnUploadTellsItsProgress) {
    EXPECT_EQ(AnswerTo("client.put(" + At("/dav/film") + ", '', new Buffer(900000))").status, 201);
    const std::vector<int> progress = keeper.Progress("upload_progress");
    ASSERT_FALSE(progress.empty());
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 100);
    EXPECT_EQ(server->Stored(QStringLiteral("film")).size(), 900000);
}

TEST_F(WithAWebServer, AnUploadAboveTheServersLimitIsAnError) {
    const Answer answer = AnswerTo("client.post(" + At("/small") + ", 'Content-Type:x/y', new Buffer(200))");
    EXPECT_EQ(answer.code, 299);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(AnswerTo("client.post(" + At("/small") + ", 'Content-Type:x/y', 'short')").data, "short");
}

TEST_F(WithAWebServer, ADownloadGoesToAFileAndReportsNoBody) {
    const std::string path = Folder() + "/film.bin";
    const Answer answer = AnswerTo("client.downloadFile(" + At("/big") + ", '', " + Quoted(path) + ")");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.data, "");
    EXPECT_EQ(ValueOf(answer, "Content-Length"), "1000000");
    EXPECT_EQ(Content(QString::fromStdString(path)), QByteArray(1000000, 'b'));
}

TEST_F(WithAWebServer, ADownloadIntoAFolderKeepsTheNameOfTheAddress) {
    EXPECT_EQ(AnswerTo("client.downloadFile(" + At("/hello.txt") + ", '', " + Quoted(Folder()) + ")").code, 0);
    EXPECT_EQ(Content(folder.filePath(QStringLiteral("hello.txt"))), "hello");
}

TEST_F(WithAWebServer, ADownloadWithoutPathIsRefusedAtOnce) {
    const Answer answer = AnswerTo("client.downloadFile(" + At("/hello.txt?unasked") + ")");
    EXPECT_EQ(answer.code, 24);
    EXPECT_EQ(answer.text, "wrong file path");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(server->RequestsFor("/hello.txt?unasked"), 0);
}

TEST_F(WithAWebServer, ADownloadWhereNoFileCanBeKeepsTheStatus) {
    const Answer answer =
        AnswerTo("client.downloadFile(" + At("/hello.txt") + ", '', " + Quoted(Folder() + "/missing/file") + ")");
    EXPECT_EQ(answer.code, 25);
    EXPECT_EQ(answer.text, "File cannot be created");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.headers, "");
}

TEST_F(WithAWebServer, ADownloadThatFailsMakesNoFileAndLeavesNoPathBehind) {
    const std::string path = Folder() + "/film.bin";
    EXPECT_EQ(AnswerTo("client.downloadFile(" + At("/nowhere") + ", '', " + Quoted(path) + ")").code, 203);
    EXPECT_EQ(Get("/hello.txt").data, "hello");
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path)));
}

TEST_F(WithAWebServer, OtherProtocolsAreUnknownAndReachNoFile) {
    const std::string secret = Folder() + "/secret";
    QFile file(QString::fromStdString(secret));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("secret") == 6);
    file.close();
    for (const std::string& address :
         {"file://" + secret, secret, std::string("data:text/plain,secret"), std::string("ftp://127.0.0.1/"),
          std::string("qrc:/x"), std::string(""), std::string("http//x"), std::string("://")}) {
        const Answer answer = AnswerTo("client.get(" + Quoted(address) + ")");
        EXPECT_EQ(answer.code, 301) << address;
        EXPECT_EQ(answer.data, "") << address;
    }
    AnswerTo("client.put(" + Quoted("file://" + secret) + ", '', 'overwritten')");
    EXPECT_EQ(Content(QString::fromStdString(secret)), "secret");
}

TEST_F(WithAWebServer, AnAddressWithoutHostFailsInTheManager) {
    const Answer answer = AnswerTo("client.get('http:///hello.txt')");
    EXPECT_GT(answer.code, 0);
    EXPECT_EQ(answer.data, "");
}

TEST_F(WithAWebServer, ListenersAreKeptByName) {
    Run("var seen = function () {}; client.on('response', seen); client.on('response', 5); client.on('nothing', seen)");
    EXPECT_TRUE(client->GetListener(QStringLiteral("response")).isFunction());
    EXPECT_FALSE(client->GetListener(QStringLiteral("nothing")).isValid());
}

TEST_F(WithAWebServer, AScriptSeesItsMethodsAndNothingElse) {
    EXPECT_EQ(Run("var names = []; for (var name in client) names.push(name); names.sort().join(' ')").find("Slot"),
              std::string::npos);
    for (const char* hidden : {"SlotResponseReceived", "SlotThreadReady", "deleteLater", "destroyed", "objectName"})
        EXPECT_EQ(Run(std::string("typeof client.") + hidden), "undefined") << hidden;
    for (const char* shown : {"getHeaderValue", "getHeaderNameByIndex", "getHeaderValueByIndex", "getHeaderCount",
                              "addHeader", "on", "get", "post", "put", "downloadFile", "deleteResource"})
        EXPECT_EQ(Run(std::string("typeof client.") + shown), "function") << shown;
}

TEST_F(WithAWebServer, MethodsGiveNothingBack) {
    EXPECT_EQ(Run("client.get(" + At("/hello.txt") + ")"), "undefined");
    EXPECT_EQ(keeper.NextAnswer().data, "hello");
}

TEST_F(WithAWebServer, AClientWithoutOwnerSendsNothing) {
    HTTPClient alone(nullptr);
    alone.get(QString::fromStdString(server->Address("/hello.txt?alone")));
    EXPECT_EQ(Get("/hello.txt").data, "hello");
    EXPECT_EQ(server->RequestsFor("/hello.txt?alone"), 0);
}

class Certificates : public WithAWebServer {
protected:
    static void SetUpTestSuite() {
        WithAWebServer::SetUpTestSuite();
        before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration trusting = before;
        trusting.addCaCertificates(server->AuthorityFile());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    static void TearDownTestSuite() {
        QSslConfiguration::setDefaultConfiguration(before);
        WithAWebServer::TearDownTestSuite();
    }
    Answer GetBy(WebServer::Certificate certificate) {
        return AnswerTo("client.get(" + Quoted(server->SecureAddress(certificate, "/hello.txt")) + ")");
    }
    static QSslConfiguration before;
};
QSslConfiguration Certificates::before;

TEST_F(Certificates, AGoodOneIsTaken) {
    const Answer answer = GetBy(WebServer::Certificate::Good);
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, "hello");
}

TEST_F(Certificates, BadOnesAreRefused) {
    for (const auto bad :
         {WebServer::Certificate::SelfSigned, WebServer::Certificate::WrongName, WebServer::Certificate::Expired}) {
        const Answer answer = GetBy(bad);
        EXPECT_EQ(answer.code, 6) << static_cast<int>(bad);
        EXPECT_EQ(answer.data, "");
    }
}

TEST_F(Certificates, AnUnknownAuthorityIsRefused) {
    const QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    QSslConfiguration::setDefaultConfiguration(before);
    EXPECT_EQ(GetBy(WebServer::Certificate::Good).code, 6);
    QSslConfiguration::setDefaultConfiguration(trusting);
}

TEST_F(Certificates, AServerThatSpeaksNoTlsIsAFailure) {
    const HostileServer plain([](Peer& peer) { peer.Send("HTTP/1.1 200 OK\r\n\r\n"); });
    const Answer answer = AnswerTo("client.get('https://127.0.0.1:" + std::to_string(plain.Port()) + "/')");
    EXPECT_GT(answer.code, 0);
}
