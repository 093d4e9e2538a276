#pragma once

#include <cstdint>
#include <string>

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>

/// A real web server, nginx, on loopback ports of its own, in the foreground, with all that it needs in a folder of its own. It ends
/// with this object, and with the test process whatever happens to that.
///
/// | path          | what it does |
/// |---------------|--------------|
/// | /hello.txt    | "hello" |
/// | /big          | 1,000,000 bytes |
/// | /slow/big     | the same at 2 MB a second |
/// | /chunked      | "first second" in two chunks |
/// | /moved        | 302 to /hello.txt |
/// | /forbidden/   | 403 |
/// | /private/x    | "secret" for ada with the password engine |
/// | /echo         | the request's body; headers X-Method, X-Args, X-Type, X-Got with what came |
/// | /small        | refuses bodies above 100 bytes |
/// | /dav/         | files that can be put and deleted |
class WebServer {
public:
    /// Which certificate a TLS port shows.
    enum class Certificate { Good, SelfSigned, WrongName, Expired, NotYetValid };

    WebServer();
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    /// Empty when it runs, otherwise what went wrong.
    std::string Problem() const { return m_problem; }
    std::string Address(const std::string& path) const;
    std::string SecureAddress(Certificate certificate, const std::string& path) const;
    /// The certificate of the authority behind all but SelfSigned.
    QString AuthorityFile() const { return In("ca.pem"); }
    /// The content of a file below the folder of /dav/, "(no file)" when it is not there.
    QByteArray Stored(const QString& name) const;
    /// Requests that the server has noted for a path until now.
    int RequestsFor(const std::string& path) const;

private:
    static constexpr int kPorts = 6; ///< plain, then one for each certificate

    QString In(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    bool MakeFiles();
    bool MakeCertificates();
    bool Start();
    QByteArray Configuration() const;
    bool WaitUntilReady();
    bool RunTool(const QStringList& command);

    QTemporaryDir m_folder;
    QProcess m_process;
    std::uint16_t m_ports[kPorts] = {};
    std::string m_problem;
};
