#include "HttpFixture.h"

// Host names, in a network of its own where one name is known and no resolver answers; see in_own_network.

class HostNames : public HttpFixture {};

TEST_F(HostNames, AKnownOneIsReached) {
    const HostileServer server([](Peer& peer) {
        const std::string request = peer.ReadRequest();
        const bool named = request.find("Host: lights.test:") != std::string::npos;
        peer.Send(named ? "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok" : "HTTP/1.1 400 No\r\n\r\n");
    });
    const Answer answer = AnswerTo("client.get('http://lights.test:" + std::to_string(server.Port()) + "/')");
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.data, "ok");
}

TEST_F(HostNames, AnUnknownOneIsAnError) {
    const Answer answer = AnswerTo("client.get('http://nobody.test/')");
    EXPECT_EQ(answer.code, 3);
    EXPECT_EQ(answer.text, "the remote host name was not found (invalid hostname)");
    EXPECT_EQ(answer.status, 0);
}

TEST_F(HostNames, ALookUpThatIsUnderWayDoesNotKeepTheClient) {
    Run("client.get('http://nobody.test/')");
    const auto begin = std::chrono::steady_clock::now();
    EndClient();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}
