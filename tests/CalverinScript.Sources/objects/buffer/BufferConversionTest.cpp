#include "BufferConversion.h"
#include "ByteArrayClass.h"
#include "ScriptFixture.h"

namespace {

class BufferConversion : public ScriptFixture {};

TEST_F(BufferConversion, MakesABufferOfBytes) {
    engine.globalObject().setProperty(QStringLiteral("b"), engine.toScriptValue(QByteArray("a\0b", 3)));
    EXPECT_EQ(Run("(b instanceof Buffer) + b.toString('hex')"), "true610062");
}

TEST_F(BufferConversion, MakesAPlainVariantWhenTheScriptReplacedTheGlobal) {
    Run("var old = Buffer; Buffer = function () {}");
    const QScriptValue value = BufferFromBytes(&engine, "abc");
    EXPECT_TRUE(value.isVariant());
    EXPECT_FALSE(IsBuffer(value));
    EXPECT_EQ(value.toVariant().toByteArray(), QByteArray("abc"));
    EXPECT_EQ(Run("new old('abc').left(2) instanceof old"), "false");
    Run("Buffer = old");
    EXPECT_TRUE(IsBuffer(BufferFromBytes(&engine, "abc")));
}

TEST_F(BufferConversion, SurvivesAnythingInThePlaceOfTheGlobal) {
    for (const char* replacement :
         {"Buffer = 5", "Buffer = null", "Buffer = undefined", "Buffer = {}", "delete Buffer"}) {
        Run(replacement);
        EXPECT_TRUE(BufferFromBytes(&engine, "abc").isVariant()) << replacement;
    }
}

TEST_F(BufferConversion, GivesTheBytesOfABufferAndNoneOfAnythingElse) {
    EXPECT_EQ(qscriptvalue_cast<QByteArray>(engine.evaluate(QStringLiteral("new Buffer('abc')"))), QByteArray("abc"));
    for (const char* other : {"'abc'", "5", "null", "undefined", "({})", "[1]", "Buffer", "new Date()",
                              "Buffer.prototype", "new Buffer('abc').valueOf()"})
        EXPECT_TRUE(BytesFromBuffer(engine.evaluate(QString::fromLatin1(other))).isEmpty()) << other;
    EXPECT_TRUE(BytesFromBuffer(QScriptValue()).isEmpty());
}

TEST_F(BufferConversion, KnowsABufferByItsScriptClass) {
    EXPECT_TRUE(IsBuffer(engine.evaluate(QStringLiteral("new Buffer(1)"))));
    EXPECT_FALSE(IsBuffer(engine.evaluate(QStringLiteral("({length: 1})"))));
    EXPECT_FALSE(IsBuffer(engine.evaluate(QStringLiteral("Buffer.prototype"))));
    EXPECT_FALSE(IsBuffer(QScriptValue()));
    EXPECT_EQ(engine.evaluate(QStringLiteral("new Buffer(1)")).scriptClass()->name(), QStringLiteral("Buffer"));
}

TEST_F(BufferConversion, KeepsTheBytesInAVariantOfTheObject) {
    const QScriptValue buffer = engine.evaluate(QStringLiteral("new Buffer('abc')"));
    EXPECT_EQ(buffer.data().toVariant().userType(), int(QMetaType::QByteArray));
    ByteArrayClass::BytesOf(buffer)->append('d');
    EXPECT_EQ(buffer.toString(), QStringLiteral("abcd"));
    EXPECT_EQ(ByteArrayClass::BytesOf(engine.newObject()), nullptr);
}

} // namespace
