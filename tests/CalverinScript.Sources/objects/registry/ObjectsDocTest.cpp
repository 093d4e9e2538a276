#include <fstream>
#include <sstream>

#include "ScriptFixture.h"

namespace {

/// The examples of docs/objects.md, in their order.
std::vector<std::string> Examples() {
    std::ifstream file(OBJECTS_DOC);
    std::stringstream all;
    all << file.rdbuf();
    const std::string text = all.str();
    const std::string open = "```js\n";
    std::vector<std::string> examples;
    for (std::size_t at = text.find(open); at != std::string::npos; at = text.find(open, at)) {
        at += open.size();
        examples.push_back(text.substr(at, text.find("```", at) - at));
    }
    return examples;
}

class ObjectsDoc : public ScriptFixture {
protected:
    /// What a function of an example gives for an argument.
    std::string Call(const std::string& example, const char* function, const char* argument) {
        QScriptValue object = engine.evaluate(QString::fromStdString(example));
        QScriptValue called = object.property(QString::fromLatin1(function));
        EXPECT_TRUE(called.isFunction()) << example;
        const QScriptValue result = called.call(object, QScriptValueList{QString::fromLatin1(argument)});
        engine.clearExceptions();
        return result.toString().toStdString();
    }
};

TEST_F(ObjectsDoc, ShowsExamplesThatRun) {
    const std::vector<std::string> examples = Examples();
    ASSERT_EQ(examples.size(), 4u);
    EXPECT_EQ(Call(examples[0], "Frame", "ON"), "4f4e0d");
    EXPECT_EQ(Call(examples[1], "Command", "123456789"), "123456789BB3D");
    EXPECT_EQ(Call(examples[2], "Title", "<show><title>Odin</title></show>"), "Odin");
    EXPECT_EQ(Call(examples[2], "Title", "<show>"), "Error: not XML");
    EXPECT_EQ(Call(examples[2], "Answer", "5"), "<answer>5</answer>\n");
    EXPECT_EQ(Call(examples[3], "Seen", ""), "0");
}

} // namespace
