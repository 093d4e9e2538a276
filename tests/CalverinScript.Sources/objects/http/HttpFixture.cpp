#include "HttpFixture.h"

#include "ByteArrayClass.h"

void EventKeeper::PostScriptEvent(const QString& eventName, const MScriptParamList* params,
                                  MScriptCommonEvent* object) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (eventName == QLatin1String("response")) {
        ASSERT_EQ(params->Count(), 2);
        const auto response = params->At(0).value<HTTPResponse>();
        const auto error = params->At(1).value<SocketErrorInfo>();
        m_answers.push_back({error.GetErrorCode(), error.GetErrorText().toStdString(), response.GetStatusCode(),
                             response.GetHeaders().toStdString(), response.GetData(), object});
    } else {
        ASSERT_EQ(params->Count(), 1);
        ASSERT_STREQ(params->At(0).typeName(), "int");
        m_progress.push_back({eventName.toStdString(), params->At(0).toInt()});
    }
    m_changed.notify_all();
}

Answer EventKeeper::NextAnswer() {
    std::unique_lock<std::mutex> guard(m_lock);
    if (!m_changed.wait_for(guard, kHttpDeadline, [&] { return !m_answers.empty(); }))
        return {};
    const Answer answer = m_answers.front();
    m_answers.erase(m_answers.begin());
    return answer;
}

std::size_t EventKeeper::AnswersLeft() {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_answers.size();
}

std::vector<int> EventKeeper::Progress(const std::string& event) {
    const std::lock_guard<std::mutex> guard(m_lock);
    std::vector<int> values;
    for (const Percent& percent : m_progress)
        if (percent.event == event)
            values.push_back(percent.value);
    return values;
}

void HttpFixture::SetUp() {
    auto* buffers = new ByteArrayClass(&engine);
    engine.globalObject().setProperty(QStringLiteral("Buffer"), buffers->Constructor());
    client = std::make_unique<HTTPClient>(&keeper);
    engine.globalObject().setProperty(QStringLiteral("client"), client->ToScript(engine));
}

std::string HttpFixture::Run(const std::string& script) {
    const QScriptValue value = engine.evaluate(QString::fromStdString(script));
    EXPECT_FALSE(engine.hasUncaughtException()) << script << ": " << value.toString().toStdString();
    return value.toString().toStdString();
}

Answer HttpFixture::AnswerTo(const std::string& script) {
    Run(script);
    return keeper.NextAnswer();
}

std::string Quoted(const std::string& text) {
    std::string literal = "\"";
    for (const char c : text)
        literal += c == '\\' || c == '"' ? std::string("\\") + c : std::string(1, c);
    return literal + "\"";
}
