#include "ScriptCallbacks.h"

#include <gtest/gtest.h>

#include <QScriptEngine>

#include "MyAsyncDeviceExecContext.h"

namespace {

class IgnoredAnswers : public IAsyncDeviceExecContextHandler {
public:
    virtual ~IgnoredAnswers() = default;
    void OnAsyncContextDone(MyAsyncDeviceExecContext*) override {}
};

class CallbacksOfAScript : public testing::Test {
protected:
    void SetUp() override { callbacks.Note(context, function); }
    void TearDown() override { context->Release(); }

    QScriptEngine engine;
    QScriptValue function = engine.evaluate(QStringLiteral("(function(text) { return arguments.length + text })"));
    IgnoredAnswers handler;
    SharedContextRegistry<MyAsyncDeviceExecContext> registry =
        std::make_shared<ContextRegistry<MyAsyncDeviceExecContext>>();
    MyAsyncDeviceExecContext* context = new MyAsyncDeviceExecContext(&handler, registry);
    ScriptCallbacks callbacks;
};

TEST_F(CallbacksOfAScript, AreNotCalledBeforeTheAnswerIsThere) {
    EXPECT_FALSE(callbacks.Take(*context).has_value());
    EXPECT_EQ(callbacks.Count(), 1);
}

TEST_F(CallbacksOfAScript, GetTheAnswersTextOnce) {
    context->SetResultText("done");
    context->End();
    auto call = callbacks.Take(*context);
    ASSERT_TRUE(call.has_value());
    EXPECT_EQ(call->function.call(QScriptValue(), call->arguments).toString(), QStringLiteral("1done"));
    EXPECT_FALSE(callbacks.Take(*context).has_value());
}

TEST_F(CallbacksOfAScript, GetNoArgumentForAnAnswerWithoutText) {
    context->End();
    const auto call = callbacks.Take(*context);
    ASSERT_TRUE(call.has_value());
    EXPECT_TRUE(call->arguments.isEmpty());
}

TEST_F(CallbacksOfAScript, AreForgottenOneByOneOrAllTogether) {
    context->End();
    callbacks.Forget(context);
    callbacks.Forget(context);
    EXPECT_FALSE(callbacks.Take(*context).has_value());
    callbacks.Note(context, function);
    callbacks.SetOnChange(function);
    callbacks.Clear();
    EXPECT_FALSE(callbacks.Take(*context).has_value());
    EXPECT_FALSE(callbacks.GetOnChange().isFunction());
}

TEST_F(CallbacksOfAScript, ForChangesAreReplacedAndNeverChained) {
    EXPECT_FALSE(callbacks.GetOnChange().isValid());
    callbacks.SetOnChange(engine.evaluate(QStringLiteral("(function() { return 'first' })")));
    callbacks.SetOnChange(engine.evaluate(QStringLiteral("(function() { return 'second' })")));
    EXPECT_EQ(callbacks.GetOnChange().call().toString(), QStringLiteral("second"));
}

} // namespace
