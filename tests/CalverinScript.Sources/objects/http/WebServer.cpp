#include "WebServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTcpSocket>

#include "HostileServer.h"
#include "HttpDeadline.h"

namespace {

constexpr int kAttempts = 5; ///< a port may be taken between the look for it and the start
constexpr int kBigSize = 1000000;
constexpr const char* kCertificateNames[] = {"good", "selfsigned", "wrongname", "expired", "notyetvalid"};

const char* const kCommon = R"(
daemon off;
master_process off;
pid nginx.pid;
load_module /usr/lib/nginx/modules/ngx_http_echo_module.so;
events { worker_connections 256; }
http {
    access_log access.log;
    client_body_temp_path body;
    proxy_temp_path proxy;
    fastcgi_temp_path fastcgi;
    uwsgi_temp_path uwsgi;
    scgi_temp_path scgi;
    default_type application/octet-stream;
)";

const char* const kPlainServer = R"(
    server {
        listen 127.0.0.1:%PORT%;
        root www;
        location /slow/ { alias www/; limit_rate 2000k; }
        location = /chunked { echo -n "first "; echo_flush; echo_sleep 0.05; echo -n "second"; }
        location = /moved { return 302 /hello.txt; }
        location /forbidden/ { deny all; }
        location /private/ { auth_basic "desk"; auth_basic_user_file passwords; }
        location = /echo {
            add_header X-Method $request_method;
            add_header X-Args $args;
            add_header X-Type $content_type;
            add_header X-Got $http_x_sent;
            echo_read_request_body;
            echo_request_body;
        }
        location = /small { client_max_body_size 100; echo_read_request_body; echo_request_body; }
        location /dav/ { dav_methods PUT DELETE; }
    }
)";

const char* const kSecureServer = R"(
    server {
        listen 127.0.0.1:%PORT% ssl;
        root www;
        ssl_certificate %NAME%.pem;
        ssl_certificate_key %NAME%.key;
    }
)";

/// What the authority needs to sign for a time of choice.
constexpr const char* kBooksOfTheAuthority = R"([ca]
default_ca = books
[books]
database = index.txt
new_certs_dir = .
rand_serial = yes
default_md = sha256
policy = names
x509_extensions = here
[names]
commonName = supplied
[here]
subjectAltName = IP:127.0.0.1
)";

bool WriteFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QString Text(const char* text) {
    return QString::fromLatin1(text);
}

} // namespace

WebServer::WebServer() {
    if (!MakeFiles() || !MakeCertificates())
        return;
    for (int i = 0; i < kAttempts; ++i)
        if (Start()) {
            m_problem.clear();
            return;
        }
}

WebServer::~WebServer() {
    m_process.kill();
    m_process.waitForFinished();
}

bool WebServer::MakeFiles() {
    const QDir folder(m_folder.path());
    for (const char* name : {"www", "www/private", "www/forbidden", "www/dav", "body", "proxy"})
        folder.mkpath(Text(name));
    const bool made = WriteFile(In("www/hello.txt"), "hello") && WriteFile(In("www/big"), QByteArray(kBigSize, 'b')) &&
                      WriteFile(In("www/private/x"), "secret") && WriteFile(In("passwords"), "ada:{PLAIN}engine\n");
    if (!made)
        m_problem = "cannot write below " + m_folder.path().toStdString();
    return made;
}

bool WebServer::RunTool(const QStringList& command) {
    QProcess tool;
    tool.setWorkingDirectory(m_folder.path());
    tool.start(command.first(), command.mid(1));
    if (tool.waitForFinished() && tool.exitCode() == 0)
        return true;
    m_problem = command.join(QLatin1Char(' ')).toStdString() + ": " + tool.readAllStandardError().toStdString();
    return false;
}

/// An authority, and certificates of its for 127.0.0.1, for another name, for a time that is over, and for one to come; one that signs
/// itself.
bool WebServer::MakeCertificates() {
    const QString self =
        Text("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=%1 "
             "-keyout %2.key -out %2.pem");
    const QString request = Text("openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=%1 "
                                 "-keyout %2.key -out %2.csr");
    const QString sign = Text("openssl x509 -req -in %1.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days %2 "
                              "-extfile %3.ext -out %1.pem");
    const QString signForLater =
        Text("openssl ca -batch -notext -config later.conf -startdate 20900101000000Z -enddate 20910101000000Z "
             "-cert ca.pem -keyfile ca.key -in %1.csr -out %1.pem");
    if (!WriteFile(In("later.conf"), kBooksOfTheAuthority) || !WriteFile(In("index.txt"), "") ||
        !WriteFile(In("here.ext"), "subjectAltName=IP:127.0.0.1") ||
        !WriteFile(In("elsewhere.ext"), "subjectAltName=DNS:elsewhere.test"))
        return false;
    const QString commands[] = {self.arg(Text("authority"), Text("ca")),
                                self.arg(Text("127.0.0.1"), Text("selfsigned")),
                                request.arg(Text("127.0.0.1"), Text("good")),
                                sign.arg(Text("good"), Text("2"), Text("here")),
                                request.arg(Text("elsewhere.test"), Text("wrongname")),
                                sign.arg(Text("wrongname"), Text("2"), Text("elsewhere")),
                                request.arg(Text("127.0.0.1"), Text("expired")),
                                sign.arg(Text("expired"), Text("-1"), Text("here")),
                                request.arg(Text("127.0.0.1"), Text("notyetvalid")),
                                signForLater.arg(Text("notyetvalid"))};
    for (const QString& command : commands)
        if (!RunTool(command.split(QLatin1Char(' '))))
            return false;
    return true;
}

QByteArray WebServer::Configuration() const {
    QByteArray text = kCommon;
    text += QByteArray(kPlainServer).replace("%PORT%", QByteArray::number(m_ports[0]));
    for (int i = 1; i < kPorts; ++i)
        text += QByteArray(kSecureServer)
                    .replace("%PORT%", QByteArray::number(m_ports[i]))
                    .replace("%NAME%", kCertificateNames[i - 1]);
    return text + "}\n";
}

bool WebServer::Start() {
    for (std::uint16_t& port : m_ports)
        port = UnusedPort();
    if (!WriteFile(In("nginx.conf"), Configuration()))
        return false;
    m_process.setWorkingDirectory(m_folder.path());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(Text("setpriv"), {Text("--pdeathsig"), Text("KILL"), Text("/usr/sbin/nginx"), Text("-p"),
                                      m_folder.path(), Text("-e"), In("error.log"), Text("-c"), In("nginx.conf")});
    return m_process.waitForStarted() && WaitUntilReady();
}

bool WebServer::WaitUntilReady() {
    QElapsedTimer clock;
    clock.start();
    while (!clock.hasExpired(std::chrono::milliseconds(kHttpDeadline).count())) {
        QTcpSocket probe;
        probe.connectToHost(Text("127.0.0.1"), m_ports[kPorts - 1]);
        if (probe.waitForConnected())
            return true;
        if (m_process.waitForFinished(10)) {
            m_problem = "nginx ended: " + m_process.readAll().toStdString();
            return false;
        }
    }
    m_problem = "nginx does not answer";
    return false;
}

std::string WebServer::Address(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(m_ports[0]) + path;
}

std::string WebServer::SecureAddress(Certificate certificate, const std::string& path) const {
    return "https://127.0.0.1:" + std::to_string(m_ports[1 + static_cast<int>(certificate)]) + path;
}

QByteArray WebServer::Stored(const QString& name) const {
    QFile file(m_folder.filePath(Text("www/dav/") + name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

int WebServer::RequestsFor(const std::string& path) const {
    QFile file(In("access.log"));
    file.open(QIODevice::ReadOnly);
    return file.readAll().count(QByteArray::fromStdString(' ' + path + ' '));
}
