#include "NoteTable.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include "ScriptReport.h"

namespace {

QString Utf8(const char* text) {
    return QString::fromUtf8(text);
}

QString Content(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

/// "3 code", a line for each note.
std::string NotesOn(const QString& script) {
    const ScriptReport report = AnalyseScript(script, QStringLiteral("a.js"));
    std::string text = report.problem ? report.problem->text.toStdString() + "\n" : std::string();
    for (const ScriptNote& note : report.notes)
        text += std::to_string(note.line) + " " + note.Code().toStdString() + "\n";
    return text;
}

/// A script that shows a note, and the nearest one that is right.
struct NoteCase {
    const char* notes; ///< as NotesOn has them
    const char* script;
    const char* right;
};

constexpr NoteCase kNoteCases[] = {
    {"2 unusable-name\n", "({\n'x\u0394': function () {} })", "({\n'x\u00e4': function () {} })"},
    {"2 no-variable\n", "({ Device: {\nOn: true } })", "({ Device: {\nOn: 1 } })"},
    {"2 default-variable\n", "({ Device: {\nStatus: 1 } })",
     "({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } }, Device: {\nStatus: 1 } })"},
    {"2 no-setting\n", "({ Setup: {\na: true }, f: function () { return this.Setup.a; } })",
     "({ Setup: {\na: 1 }, f: function () { return this.Setup.a; } })"},
    {"2 too-many-parameters\n", "({\nf: function (a, b, c, d, e, f, g, h, i) {} })",
     "({\nf: function (a, b, c, d, e, f, g, h) {} })"},
    {"3 same-command-name\n",
     "({ Info: { Commands: { a: { Name: 'Go' }, b: { Name: 'Go' } } },\na: function () {},\n"
     "b: function () {} })",
     "({ Info: { Commands: { a: { Name: 'Go' }, b: { Name: 'go' } } },\na: function () {},\nb: function () {} })"},
    {"2 start-name\n3 start-name\n", "({\nmStart: function () {},\n_mstop: function () {} })",
     "({\n_mStart: function () {},\n_mStop: function () {} })"},
    {"1 start-not-published\n", "function _mStart() {}\n({ f: function () {} })",
     "function _mStart() {}\n({ f: function () {}, _mStart: _mStart })"},
    {"3 same-member\n", "({ f: function () {},\ng: { f: 1 },\nf: function () {} })",
     "({ f: function () {},\ng: { f: 1 },\nget h() { return 1; }, set h(v) {} })"},
    {"2 means-nothing\n", "({ Info: {\nTitel: 'x' } })", "({ Info: {\nTitle: 'x' } })"},
    {"2 not-published\n", "({ Info: { Variables: {\nLevl: {} } }, Device: { Level: 1 } })",
     "({ Info: { Variables: {\nLevel: {} } }, Device: { Level: 1 } })"},
    {"2 no-object\n", "({ Info: { Variables: {\nLevel: 5 } }, Device: { Level: 1 } })",
     "({ Info: { Variables: {\nLevel: { MinValue: 0 } } }, Device: { Level: 1 } })"},
    {"2 no-boolean\n", "({ Info: { Options: {\nRemoveDefaultCommandsAndVariables: 1 } } })",
     "({ Info: { Options: {\nRemoveDefaultCommandsAndVariables: true } } })"},
    {"2 no-plain-value\n", "({ Info: { Variables: { l: {\nMinValue: {} } } }, Device: { l: 1 } })",
     "({ Info: { Variables: { l: {\nMinValue: 0 } } }, Device: { l: 1 } })"},
    {"2 no-number\n", "({ Info: { Variables: { l: {\nMinValue: 'low' } } }, Device: { l: 1 } })",
     "({ Info: { Variables: { l: {\nMinValue: '0' } } }, Device: { l: 1 } })"},
    {"2 unknown-type\n", "({ Info: { Variables: { l: {\nType: 'real' } } }, Device: { l: 1 } })",
     "({ Info: { Variables: { l: {\nType: 'Real' } } }, Device: { l: 1 } })"},
    {"2 unknown-widget\n",
     "({ Info: { Setup: { s: {\nWidget: 'Seriell' } } }, Setup: { s: '' }, f: function () { this.Setup.s; } })",
     "({ Info: { Setup: { s: {\nWidget: 'Serial' } } }, Setup: { s: '' }, f: function () { this.Setup.s; } })"},
    {"1 enum-without-items\n2 no-array\n",
     "({ Info: { Variables: { m: {\nType: 'Enum', Items: 'a' } } }, Device: { m: 0 } })",
     "({ Info: { Variables: { m: {\nType: 'Enum', Items: ['a'] } } }, Device: { m: 0 } })"},
    {"2 items-without-enum\n", "({ Info: { Variables: { m: {\nItems: ['a'] } } }, Device: { m: 'a' } })",
     "({ Info: { Variables: { m: {\nItems: ['a'], Type: 'Enum' } } }, Device: { m: 'a' } })"},
    {"2 enum-without-items\n",
     "({ Info: { Commands: { f: { Params: {\na: { Type: 'Enum' } } } } }, f: function (a) {} })",
     "({ Info: { Variables: { m: {\nType: 'Enum', Items: [] } } }, Device: { m: 0 }, f: function (a) { "
     "this.Device.EnumAdd('m', a); "
     "} })"},
    {"2 built-in-name\n", "({ Info: { Commands: { f: {\nName: 'Load From Text' } } }, f: function () {} })",
     "({ Info: { Commands: { f: {\nName: 'Load from text' } } }, f: function () {} })"},
    {"2 min-above-max\n",
     "({ Info: { Commands: { f: { Params: {\na: { Type: 'Real', MinValue: 2, MaxValue: 1.5 } } } } },"
     " f: function (a) {} })",
     "({ Info: { Commands: { f: { Params: {\na: { Type: 'Real', MinValue: 1.5, MaxValue: 1.5 } } } } }, f: function "
     "(a) {} })"},
    {"2 default-beyond-limit\n3 default-beyond-limit\n",
     "({ Info: { Variables: { l: { MaxValue: 10 } }, Setup: { p: { MinValue: 1 } } }, Device: {\nl: 10.5 }, Setup: "
     "{\np: 0 },"
     " f: function () { return this.Setup.p; } })",
     "({ Info: { Variables: { l: { MaxValue: 10 } }, Setup: { p: { MinValue: 1 } } }, Device: {\nl: 10 }, Setup: {\np: "
     "1 },"
     " f: function () { return this.Setup.p; } })"},
    {"2 default-too-long\n", "({ Info: { Variables: { t: { MaxLength: 3 } } }, Device: {\nt: 'long' } })",
     "({ Info: { Variables: { t: { MaxLength: 4 } } }, Device: {\nt: 'long' } })"},
    {"2 default-is-no-item\n3 default-is-no-item\n",
     "({ Info: { Variables: { m: { Type: 'Enum', Items: ['a', 'b'] }, n: { Type: 'Enum', Items: ['a', 'b'] } } }, "
     "Device: {\nm: 'c',\n"
     "n: 2 } })",
     "({ Info: { Variables: { m: { Type: 'Enum', Items: ['a', 'b'] }, n: { Type: 'Enum', Items: ['a', 'b'] } } }, "
     "Device: {\nm: 'b',\n"
     "n: 1 } })"},
    {"2 setting-not-read\n",
     "({ Setup: {\nport: 1,\nhost: '' }, f: function () { this.Setup.port = 2; return this.Setup.host; } })",
     "({ Setup: {\nport: 1,\nhost: '' }, f: function () { var s = this.Setup; return s.port + s['host']; } })"},
    {"2 unknown-call\n", "({ f: function () {\nQCalverin.Preform('a', 'b'); } })",
     "({ f: function () {\nQCalverin.Perform('a', 'b'); } })"},
    {"2 unknown-member\n", "({ f: function () {\nreturn QCalverin.Version; } })",
     "({ f: function () {\nreturn QCalverin.SetValue; } })"},
    {"2 too-few-arguments\n", "({ f: function () {\nQCalverin.SetInterval(f); } })",
     "({ f: function () {\nQCalverin.SetInterval(f, 5); } })"},
    {"2 too-many-arguments\n", "({ f: function () {\nQCalverin.SetValue('a', 1, 2); } })",
     "({ f: function () {\nQCalverin.SetValue('a', 1); } })"},
    {"2 unknown-class\n", "({ f: function () {\nreturn new Bufer(3); } })",
     "function Mine() {}\n({ f: function (Given) {\nreturn [new Buffer(3), new Mine(), new Given(), new Date()]; } })"},
    {"2 unknown-event\n", "var c = QCalverin.CreateSocket();\nc.on('Data', function () {});\n({})",
     "var c = QCalverin.CreateSocket();\nc.on('data', function () {});\n({})"},
    {"2 likely-event\n", "({ _on: function (c) {\nc.on('Data', function () {}); } })",
     "({ _on: function (c) {\nc.on('data', function () {}); c.on('my own', function () {}); } })"},
    {"2 event-never-comes\n", "var c = QCalverin.CreateSocket();\nc.on('message', function () {});\n({})",
     "var c = QCalverin.CreateSocket('udp4');\nc.on('message', function () {});\n({})"},
    {"2 unknown-object-member\n",
     "({ _mStart: function () { var line = QCalverin.GetResource({});\nline.on('data', function () {}); } })",
     "({ _mStart: function () { var line = QCalverin.GetResource({});\nline.On('data', function () {}); } })"},
    {"2 object-made-again\n",
     "({ Send: function () { var c =\nQCalverin.CreateSocket(); c.on('data', function () {}); } })",
     "({ _mStart: function () { var c =\nQCalverin.CreateSocket(); c.on('data', function () {}); } })"},
    {"2 lost-jump\n", "({ f: function () { for (;;) [1].forEach(function () {\ncontinue; }); } })",
     "({ f: function () { [1].forEach(function () { for (;;)\ncontinue; }); } })"},
    {"2 passed-over\n", "var a = 1,\nvar b = 2;\n({})", "var a = 1;\nvar b = 2;\n({})"},
    {"1 passed-over\n", "var a = 1, f = function () {", "var a = 1, f = function () {}"},
    {"2 passed-over\n", "({ f: function () { var a = 1, b = 2 +\n} })",
     "({ f: function () { var a = 1, b = 2 +\n3 } })"},
};

TEST(NoteTable, HasARowForEachKindOfNoteInTheirOrderEachWithACodeOfItsOwn) {
    std::set<std::string> names;
    for (std::size_t row = 0; row < kNoteKinds.size(); ++row) {
        EXPECT_EQ(kNoteKinds[row].code, static_cast<NoteCode>(row));
        EXPECT_TRUE(names.insert(kNoteKinds[row].name).second) << kNoteKinds[row].name;
    }
}

TEST(NoteTable, EachKindIsShownByAScriptAndTheNearestRightOneIsSilent) {
    std::string shown;
    for (const NoteCase& one : kNoteCases) {
        EXPECT_EQ(NotesOn(Utf8(one.script)), one.notes) << one.script;
        EXPECT_EQ(NotesOn(Utf8(one.right)), "") << one.right;
        shown += one.notes;
    }
    for (const NoteKind& kind : kNoteKinds)
        EXPECT_NE(shown.find(std::string(" ") + kind.name + "\n"), std::string::npos) << kind.name;
}

TEST(NoteTable, IsInTheManualRowByRow) {
    const QString page = Content(QStringLiteral(DOCS "/drivers.md"));
    QStringList codes;
    auto rows = QRegularExpression(QStringLiteral("^\\| `([a-z-]+)` \\| (?!\")"), QRegularExpression::MultilineOption)
                    .globalMatch(page.mid(page.indexOf(QStringLiteral("### Notes"))));
    while (rows.hasNext())
        codes.append(rows.next().captured(1));
    QStringList expected;
    for (const NoteKind& kind : kNoteKinds)
        expected.append(QLatin1String(kind.name));
    EXPECT_EQ(codes.join(QLatin1Char('\n')).toStdString(), expected.join(QLatin1Char('\n')).toStdString());
}

/// A device that is played for a driver is written against another object, and is no driver.
bool IsCounterpart(const QString& script) {
    return script.contains(QStringLiteral("Counterpart."));
}

TEST(NoteTable, SaysNothingOfTheExamplesAndTheScriptsOfTheManual) {
    int seen = 0;
    QDirIterator examples(QStringLiteral(EXAMPLES), {QStringLiteral("*.js")}, QDir::Files,
                          QDirIterator::Subdirectories);
    while (examples.hasNext()) {
        const QString path = examples.next();
        if (IsCounterpart(Content(path)))
            continue;
        EXPECT_EQ(NotesOn(Content(path)), "") << path.toStdString();
        ++seen;
    }
    QDirIterator pages(QStringLiteral(DOCS), {QStringLiteral("*.md")}, QDir::Files);
    while (pages.hasNext()) {
        const QString path = pages.next();
        // The page of the connection shows what stands behind it.
        const QString inFront = path.endsWith(QStringLiteral("/connection.md"))
                                    ? Content(QStringLiteral(TEMPLATES "/connection.js")) + QLatin1Char('\n')
                                    : QString();
        auto scripts =
            QRegularExpression(QStringLiteral("```js\\n(.*?)```"), QRegularExpression::DotMatchesEverythingOption)
                .globalMatch(Content(path));
        while (scripts.hasNext()) {
            const QString script = scripts.next().captured(1);
            if (IsCounterpart(script))
                continue;
            EXPECT_EQ(NotesOn(inFront + script), "") << path.toStdString();
            ++seen;
        }
    }
    EXPECT_GT(seen, 15);
}

TEST(NoteTable, KeepsQuietWhereASetupIsHandedAroundOrAnObjectIsMadeOnce) {
    for (const char* script : {
             "({ Setup: { a: 1 }, f: function (n) { return this.Setup[n]; } })",
             "({ Setup: { a: 1 }, f: function () { for (var k in this.Setup) g(k); } })",
             "({ Setup: { a: 1 }, f: function () { var s = this.Setup; return s[g()]; } })",
             "({ Setup: { a: 1 }, f: function () { return JSON.stringify(this.Setup); } })",
             "({ Info: { Setup: { a: { Widget: 'Label' } } }, Setup: { a: 'only shown' } })",
             "var c; function make() { c = QCalverin.CreateSocket(); }\n({ _mStart: function () { make(); } })",
             "var c; ({ Go: function () { if (!c) c = QCalverin.CreateSocket(); } })",
             "var c; ({ Go: function () { c = c || QCalverin.CreateHTTPClient(); } })",
             "var all = []; ({ _mStart: function () { [1, 2].forEach(function () { all.push(QCalverin.CreateSocket()); "
             "}); } })",
             "(function () { var c = QCalverin.CreateSocket(); return { f: function () { c.end(); } }; })()",
             "var c; ({ _mStart: function () { QCalverin.SetTimeout(function () { c = QCalverin.CreateSocket(); }, 5); "
             "} })",
             "({ _mStart: function () { this._r = QCalverin.GetResource({}); }, f: function () { var r = "
             "QCalverin.GetResource({}); "
             "r.On('data', function () {}); } })",
         })
        EXPECT_EQ(NotesOn(Utf8(script)), "") << script;
}

TEST(NoteTable, FollowsWhatMakesAnObjectAgainThroughHelpersTimersAndListeners) {
    for (const char* script : {
             "var c; function make() {\nc = QCalverin.CreateSocket(); }\n({ Go: function () { make(); } })",
             "var c; function make() {\nc = QCalverin.CreateSocket(); c.on('close', make); }\n({ _mStart: function () "
             "{ make(); } })",
             "var c; function make() {\nc = QCalverin.CreateSocket(); QCalverin.SetTimeout(make, 10); }\n({ _mStart: "
             "make })",
             "var c; ({ _mStart: function () { QCalverin.SetInterval(function () {\nc = QCalverin.CreateHTTPClient(); "
             "}, 10); } })",
         })
        EXPECT_EQ(NotesOn(Utf8(script)), "2 object-made-again\n") << script;
}

TEST(NoteTable, SurvivesTextsThatAreNoScript) {
    for (const char* script : {"", "(", ")))", "{{{", "\"", "/", "/*", "'\\", "a = /[", "new", "QCalverin",
                               "QCalverin.", "function", "function (", "x.on(", "({ Setup:", "0x", "1e", "\\"})
        NotesOn(Utf8(script));
}

} // namespace
