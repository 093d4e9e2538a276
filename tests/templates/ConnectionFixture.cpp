#include "ConnectionFixture.h"

#include <fstream>
#include <sstream>

#include "Deadline.h"

namespace {

const char* const kWords = R"(
var c = null;
function given(options) {
    var times = ['connectTime', 'answerTime', 'waitTime'];
    for (var i = 0; i < times.length; ++i)
        options[times[i]] = options[times[i]] || 60000;
    options.pause = options.pause || 10;
    options.status = function (word, reason) { hear(word + (reason ? ': ' + reason : '')); };
    options.frame = options.frame || function (text) { hear('frame:' + text); };
    c = new Connection(options);
    c.open();
}
function ask(payload, form) {
    c.ask(payload, function (answer, problem) { hear(problem ? 'problem:' + problem : 'answer:' + answer); }, form);
}
function fed(framing, pieces) {
    var told = [];
    pieces.forEach(function (piece) {
        framing.feed(piece, function (frame) { told.push(frame); }, function (why) { told.push('!' + why); },
                     function (why) { told.push('lost ' + why); });
    });
    return told;
}
function Do(line) {
    try {
        return String(eval(line));
    } catch (e) {
        return 'error: ' + e.message;
    }
}
)";

std::string FileText(const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

std::string ConnectionFixture::ConnectionText() {
    return FileText(CONNECTION_SCRIPT);
}

void ConnectionFixture::GivenConnectionScript() {
    GivenScript(
        ConnectionText() + kWords +
        "({ Do: Do, Command: function (text) { c.command(text); }, _mStop: function () { if (c) c.close(); } })");
    ASSERT_EQ(Error(), "");
}

void ConnectionFixture::GivenOpen(const std::string& options) {
    GivenConnectionScript();
    ASSERT_EQ(Do("given({" + options + "})"), "undefined");
}

Peer ConnectionFixture::GivenConnected(const std::string& options) {
    GivenOpen(TcpTo(listener.GetPort()) + (options.empty() ? "" : ", ") + options);
    return listener.Accept();
}

std::string ConnectionFixture::TcpTo(std::uint16_t port) {
    return "transport: Connection.tcp('127.0.0.1', " + std::to_string(port) + ")";
}

std::string ConnectionFixture::UdpTo(std::uint16_t port) {
    return "transport: Connection.udp('127.0.0.1', " + std::to_string(port) + ")";
}

std::string ConnectionFixture::HeardWith(const std::string& word) {
    std::string all;
    EXPECT_TRUE(Eventually([&] {
        all = Heard(0);
        return all.find(word) != std::string::npos;
    })) << word
        << " is not in: " << all;
    return all;
}
