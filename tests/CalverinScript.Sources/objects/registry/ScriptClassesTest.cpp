#include "ScriptClasses.h"

#include "ScriptFixture.h"

namespace {

class ScriptClassTable : public ScriptFixture {};

TEST_F(ScriptClassTable, IsInTheOrderInWhichAnEngineGetsThem) {
    std::string names;
    for (const ScriptClass& row : kScriptClasses)
        names += std::string(row.name) + " ";
    EXPECT_EQ(names, "XMLDocument Buffer Checksum ");
}

TEST_F(ScriptClassTable, GivesConstructorsWhoseObjectsInstanceofKnows) {
    for (const ScriptClass& row : kScriptClasses) {
        const std::string name = row.name;
        EXPECT_EQ(Run("typeof " + name), "function");
        EXPECT_EQ(Run("new " + name + "() instanceof " + name), "true") << name;
        EXPECT_EQ(Run("typeof new " + name + "()"), "object") << name;
        EXPECT_EQ(Run(name + "() instanceof " + name), "true") << name << " without new";
    }
    EXPECT_EQ(Run("new Checksum() instanceof XMLDocument"), "false");
}

TEST_F(ScriptClassTable, ShowsObjectsWithTheirOwnMembersAlone) {
    for (const ScriptClass& row : kScriptClasses)
        for (const char* member : {"deleteLater", "objectName", "destroyed", "parent", "findChild"})
            EXPECT_EQ(Run("typeof new " + std::string(row.name) + "()." + member), "undefined") << row.name << member;
}

TEST_F(ScriptClassTable, WorksInManyEnginesAtOnce) {
    QScriptEngine other;
    InstallScriptClasses(other);
    const QScriptValue mine = engine.evaluate(QStringLiteral("new Buffer('mine').left(2)"));
    EXPECT_EQ(other.evaluate(QStringLiteral("new Buffer('other').left(2)")).toString(), QStringLiteral("ot"));
    EXPECT_EQ(mine.toString(), QStringLiteral("mi"));
}

TEST_F(ScriptClassTable, LetsAnEngineGoWithObjectsInUse) {
    auto* going = new QScriptEngine;
    InstallScriptClasses(*going);
    const QScriptValue kept =
        going->evaluate(QStringLiteral("var all = [new Buffer(9), new Checksum(), new XMLDocument()]; all[0][3] = 1;"
                                       "all.push(all[2].CreateElement('a')); all[2].AppendChild(all[3]); all"));
    EXPECT_TRUE(kept.isArray());
    delete going;
    EXPECT_FALSE(kept.isValid());
}

} // namespace
