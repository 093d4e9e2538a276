#include "ScriptParts.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "DriverReport.h"

namespace parts {
namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

class Parts : public testing::Test {
protected:
    void Given(const char* name, const QByteArray& text) {
        const QString path = m_folder.filePath(Text(name));
        QDir().mkpath(path.left(path.lastIndexOf(QLatin1Char('/'))));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QString Path(const char* name = "driver.js") const { return m_folder.filePath(Text(name)); }

    std::string Script() const { return ScriptParts(Path()).Script().toStdString(); }

    /// "FILE:LINE: text" of what is wrong, with the file's name alone.
    std::string Problem() const {
        const ScriptParts parts(Path());
        if (!parts.Problem())
            return {};
        const QString name = QDir(m_folder.path()).relativeFilePath(parts.Problem()->file);
        return Text("%1:%2: %3").arg(name).arg(parts.Problem()->line).arg(parts.Problem()->text).toStdString();
    }

    /// "FILE:LINE" of the mistake that the check finds.
    std::string Mistake() const {
        const ScriptReport report = AnalyseDriver(ScriptParts(Path()), Path());
        if (!report.problem)
            return {};
        const QString name = QDir(m_folder.path()).relativeFilePath(report.problem->file);
        return Text("%1:%2").arg(name).arg(report.problem->line).toStdString();
    }

    QTemporaryDir m_folder;
};

TEST_F(Parts, ADriverThatNamesNoneIsItsTextAsItIs) {
    const QByteArray text = "\xEF\xBB\xBF({ a: 1 })\r\n// \xC3\xA4 @include none";
    Given("driver.js", text);
    EXPECT_EQ(ScriptParts(Path()).Script(), QString::fromUtf8(text)) << "a mark of UTF-8 is no text";
    EXPECT_EQ(ScriptParts(Path()).Files(), QStringList{Path()});
}

TEST_F(Parts, GoInFrontEachBehindItsLeadingLineInTheOrderOfTheLines) {
    Given("b.js", "var b;\n");
    Given("a.js", "var a;\n");
    Given("driver.js",
          "// A driver\n\n  //@include b.js\n/* with\n two */ // @include a.js\n// @include \"a.js\"\n({})\n");
    EXPECT_EQ(Problem(), "");
    EXPECT_EQ(Script(), "// @part b.js\nvar b;\n;// @part a.js\nvar a;\n"
                        ";// @part driver.js\n// A driver\n\n  //@include b.js\n/* with\n two */ // @include a.js\n"
                        "// @include \"a.js\"\n({})\n")
        << "a comment counts that has its line for itself";
}

TEST_F(Parts, NameOthersThatGoInFrontOfThemAndEachGoesInOnce) {
    Given("lib/line.js", "var line;");
    Given("lib/frame.js", "// @include line.js\nvar frame;");
    Given("timer.js", "// @include lib\\line.js\nvar timer;");
    Given("driver.js", "// @include lib/frame.js\n// @include timer.js\n// @include lib/../lib/line.js\n({})");
    const ScriptParts parts(Path());
    QStringList names;
    for (const ScriptPart& part : parts.Parts())
        names += part.name;
    EXPECT_EQ(names, (QStringList{Text("lib/line.js"), Text("lib/frame.js"), Text("timer.js"), Text("driver.js")}));
    EXPECT_EQ(parts.Files().size(), 4);
    EXPECT_EQ(parts.Files().first(), Path());
}

TEST_F(Parts, AreOneFileAlsoUnderTwoNames) {
    Given("a.js", "var a;");
    ASSERT_TRUE(QFile::link(Path("a.js"), Path("same.js")));
    Given("driver.js", "// @include a.js\n// @include same.js\n({})");
    EXPECT_EQ(ScriptParts(Path()).Parts().size(), 2u);
}

TEST_F(Parts, AreToldWhereTheyAreNamedWhenTheyCannotBeTaken) {
    Given("lib/up.js", "// @include ../../outside.js\n");
    Given("self.js", "// @include self.js\n");
    Given("one.js", "\n// @include two.js\n");
    Given("two.js", "// @include one.js\n");
    Given("whole.js", "// @part x.js\nvar x;\n;// @part y.js\n");
    const struct {
        const char* driver;
        const char* problem;
    } rows[] = {
        {"\n// @include none.js\n", "driver.js:2: \"none.js\" is not there"},
        {"// @include lib\n", "driver.js:1: \"lib\" is no regular file"},
        {"// @include\n", "driver.js:1: @include needs the name of a file"},
        {"// @include \"\"\n", "driver.js:1: @include needs the name of a file"},
        {"// @include ../x.js\n", "driver.js:1: \"../x.js\" is outside of the driver's folder"},
        {"// @include lib/../../x.js\n", "driver.js:1: \"lib/../../x.js\" is outside of the driver's folder"},
        {"// @include /etc/hostname\n", "driver.js:1: \"/etc/hostname\" is outside of the driver's folder"},
        {"// @include lib/up.js\n", "lib/up.js:1: \"../../outside.js\" is outside of the driver's folder"},
        {"// @include driver.js\n", "driver.js:1: a circle: driver.js names driver.js"},
        {"// @include self.js\n", "self.js:1: a circle: self.js names self.js"},
        {"// @include one.js\n", "two.js:1: a circle: one.js names two.js names one.js"},
        {"// @include whole.js\n", "whole.js:1: \"// @part\" leads a piece of a script that is put together already"},
        {"({})\n\n// @include a.js", "driver.js:3: @include belongs in front of the first line of code"},
        {"/* a */ var b; /*\n// @include a.js\n*/", "driver.js:2: @include belongs in front of the first line of code"},
    };
    for (const auto& row : rows) {
        Given("driver.js", row.driver);
        EXPECT_EQ(Problem(), row.problem);
        EXPECT_TRUE(ScriptParts(Path()).Parts().empty() || ScriptParts(Path()).Problem());
    }
}

TEST_F(Parts, AreLookedForAgainThoughTheyAreNotThere) {
    Given("driver.js", "// @include none.js\n");
    EXPECT_EQ(ScriptParts(Path()).Files(), (QStringList{Path(), Path("none.js")}));
}

TEST_F(Parts, AreNoMoreThanADriverMayHave) {
    QByteArray driver;
    for (int index = 0; index < 256; ++index) {
        const QByteArray name = "p" + QByteArray::number(index) + ".js";
        Given(name.constData(), "");
        driver += "// @include " + name + "\n";
    }
    Given("driver.js", driver);
    EXPECT_EQ(Problem(), "driver.js:256: a driver has at most 256 files");
}

TEST_F(Parts, AreNotLargerTogetherThanAScriptMayBe) {
    QFile large(Path("large.js"));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(qint64{64} << 20));
    Given("driver.js", "// @include large.js\n");
    EXPECT_EQ(Problem(), "driver.js:1: the driver's files are larger than 64 MB together");
}

TEST_F(Parts, OfADriverThatIsNotThereAreNone) {
    EXPECT_EQ(Problem(), "driver.js:0: is not there");
}

TEST_F(Parts, MayEndWithoutALineEndOrAStatementEnd) {
    Given("a.js", "var a = function () { return 5; } // no end");
    Given("driver.js", "// @include a.js\r\n({ Five: function () { return a(); } })");
    const ScriptReport report = AnalyseDriver(ScriptParts(Path()), Path());
    EXPECT_FALSE(report.problem) << report.problem->text.toStdString();
    EXPECT_EQ(report.published.functions.size(), 1u) << "without the \";\" the driver would be an argument";
}

TEST_F(Parts, AreScriptsByThemselvesAndTheirMistakesAreToldInThem) {
    const struct {
        const char* part;
        const char* driver;
        const char* place;
    } rows[] = {
        {"var a = ;", "({})", "part.js:1"},
        {"\nvar a; /* open", "*/ ({})", "part.js:2"},
        {"({ a: 1", "})", "part.js:1"},
        {"var a;\n*/", "({})", "part.js:2"},
        {"var a;", "\n({ a b })", "driver.js:3"},
        {"var a;\nnobody();", "({})", "part.js:2"},
        {"function f() {\n  nobody();\n}", "f();\n({})", "part.js:2"},
        {"var a;\r\n\r\nvar b;", "\r\nthrow new Error('x')", "driver.js:3"},
    };
    for (const auto& row : rows) {
        Given("part.js", row.part);
        Given("driver.js", QByteArray("// @include part.js\n") + row.driver);
        EXPECT_EQ(Mistake(), row.place) << row.part << " and " << row.driver;
    }
}

TEST_F(Parts, HaveTheirNotesWithTheirLines) {
    Given("part.js", "var a;\nfunction f() { QCalverin.Preform(); }");
    Given("driver.js", "// @include part.js\n\n({ f: f, g: function () { QCalverin.Nothing(); } })");
    const ScriptReport report = AnalyseDriver(ScriptParts(Path()), Path());
    ASSERT_EQ(report.notes.size(), 2);
    EXPECT_EQ(report.notes[0].file, Path("part.js"));
    EXPECT_EQ(report.notes[0].line, 2);
    EXPECT_EQ(report.notes[1].file, Path());
    EXPECT_EQ(report.notes[1].line, 3);
}

TEST_F(Parts, MakeAScriptThatStandsAloneAndStillTellsItsFiles) {
    Given("part.js", "var a;\n");
    Given("driver.js", "// @include part.js\nnobody();");
    const std::string script = Script();
    m_folder.remove();
    ASSERT_TRUE(QDir().mkpath(m_folder.path()));
    Given("driver.js", QByteArray::fromStdString(script));
    EXPECT_EQ(Problem(), "");
    EXPECT_EQ(Script(), script);
    EXPECT_EQ(Mistake(), "driver.js:2");
}

} // namespace
} // namespace parts
