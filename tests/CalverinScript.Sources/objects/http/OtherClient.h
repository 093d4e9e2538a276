#pragma once

#include <memory>
#include <string>

#include "HttpFixture.h"
#include "WebServer.h"

/// Another client, on the thread that asks it, which is at work while hostile servers are.
class OtherClient {
public:
    /// @param address of a page that is "hello".
    explicit OtherClient(std::string address)
        : m_address(std::move(address)) {}
    bool IsServed() {
        m_client.get(QString::fromStdString(m_address), QString(), QString(), 0, QString(), QString());
        return m_keeper.NextAnswer().data == "hello";
    }

private:
    EventKeeper m_keeper;
    const std::string m_address;
    HTTPClient m_client{&m_keeper};
};

/// A client beside a server that keeps to the rules, which the tests of a suite share.
class BesideAWebServer : public HttpFixture {
protected:
    static void SetUpTestSuite() { web = std::make_unique<WebServer>(); }
    static void TearDownTestSuite() { web.reset(); }
    void SetUp() override {
        ASSERT_EQ(web->Problem(), "");
        HttpFixture::SetUp();
    }

    inline static std::unique_ptr<WebServer> web;
};
