#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QScriptEngine>

#include "EventRecords.h"
#include "HostileServer.h"
#include "HTTPClient.h"
#include "HttpDeadline.h"
#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"

/// What came with one "response".
struct Answer {
    int code = -1; ///< -1 when there was none in time
    std::string text;
    int status = -1;
    std::string headers;
    QByteArray data;
    MScriptCommonEvent* object = nullptr;
};

/// An owner that keeps the events of its objects, which come on their HTTP threads.
class EventKeeper : public IScriptObjectOwner {
public:
    virtual ~EventKeeper() = default;
    void PostScriptEvent(const QString& eventName, const MScriptParamList* params, MScriptCommonEvent* object) override;
    std::string GetDeviceName() const override { return "Desk"; }
    void TraceMessage(const QString&, const QString&) override {}

    /// Takes the oldest answer, waiting for it.
    Answer NextAnswer();
    /// Answers that nobody has taken yet.
    std::size_t AnswersLeft();
    /// The percentages of all progress events of that name until now.
    std::vector<int> Progress(const std::string& event);

private:
    struct Percent {
        std::string event;
        int value;
    };
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<Answer> m_answers; ///< under m_lock
    std::vector<Percent> m_progress;
};

/// A client, the keeper of its events, and an engine in which it is known as `client`.
class HttpFixture : public testing::Test {
protected:
    void SetUp() override;
    /// Runs a script line and expects it to give no error. @return its text.
    std::string Run(const std::string& script);
    /// Runs a script line and waits for the answer to its request.
    Answer AnswerTo(const std::string& script);
    void EndClient() { client.reset(); }

    EventKeeper keeper;
    QScriptEngine engine;
    std::unique_ptr<HTTPClient> client;
};

/// A script text literal.
std::string Quoted(const std::string& text);
