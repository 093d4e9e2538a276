#include "SocketFixture.h"

namespace {

const char* const kWords = R"(
var got = '', want = -1, count = 0;
function word(value) {
    if (value === s)
        return 's';
    if (value.errorCode !== undefined)
        return value.errorCode + '/' + value.errorText;
    return value.toString();
}
function tell(name) {
    return function () {
        var words = [name];
        for (var i = 0; i < arguments.length; ++i)
            words.push(word(arguments[i]));
        hear(words.join(','));
    };
}
function listen(socket) {
    var names = ['connect', 'close', 'error', 'listening', 'tx_empty', 'open'];
    for (var i = 0; i < names.length; ++i)
        socket.on(names[i], tell(names[i]));
    socket.on('data', function (b, o) {
        got += b.toString();
        if (got.length === want)
            hear('got:' + got + ',' + word(o) + ',' + arguments.length);
    });
    socket.on('message', function (b, from, o) {
        ++count;
        hear(['message', b.toString(), from.port, from.address, word(o), arguments.length].join());
    });
}
function Do(line) {
    try {
        return String(eval(line));
    } catch (e) {
        return 'error: ' + e.message;
    }
}
)";

} // namespace

void SocketFixture::GivenSocketScript(const std::string& script) {
    GivenScript(kWords + script + "\n({ Do: Do })");
    ASSERT_EQ(Error(), "");
}

void SocketFixture::GivenSocket(const std::string& type) {
    GivenSocketScript("var s = QCalverin.CreateSocket(" + type + "); listen(s);");
}

Peer SocketFixture::GivenConnection() {
    Do(WithPort("s.connect(", listener.GetPort(), ")"));
    EXPECT_EQ(Heard(1), "connect,s");
    return listener.Accept();
}

std::uint16_t SocketFixture::GivenBound(const std::string& addresses) {
    return static_cast<std::uint16_t>(std::stoi(Do("s.bind(0, '" + addresses + "'); s.address().port")));
}

std::string WithPort(const std::string& before, std::uint16_t port, const std::string& behind) {
    return before + std::to_string(port) + behind;
}
