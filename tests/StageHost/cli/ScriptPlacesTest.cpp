#include "ScriptPlaces.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>

using namespace stagehost;

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

} // namespace

TEST(ScriptPlaces, AreShownFromTheWorkingFolder) {
    const QString file = QDir::current().filePath(Text("in/lights.js"));
    const QStringList shown = UsersPlaces(Show(), nullptr,
                                          {file + Text(":2:9: Error: at 5:3"), Text("| x"), Text("| ^"),
                                           Text("at f (") + file + Text(":2)"), Text("at g (/far/away.js:7)")});
    EXPECT_EQ(shown.join(QLatin1Char('\n')).toStdString(),
              "in/lights.js:2:9: Error: at 5:3\n| x\n| ^\nat f (in/lights.js:2)\nat g (/far/away.js:7)");
}

TEST(ScriptPlaces, OfADriverInASetupAreThoseOfItsFile) {
    Show show;
    show.folder = Text("/shows");
    ShowDevice device;
    device.driverFile = Text("dimmer.js");
    EXPECT_EQ(UsersPlaces(show, &device, {Text("<script>:3: x"), Text("at Fade (<script>:3)")})
                  .join(QLatin1Char('|'))
                  .toStdString(),
              "/shows/dimmer.js:3: x|at Fade (/shows/dimmer.js:3)");
    EXPECT_EQ(UsersPlaces(show, &device, {Text("lib/connection.js:3: x")}).first().toStdString(),
              "/shows/lib/connection.js:3: x");
    device.driverFile.clear();
    EXPECT_EQ(UsersPlaces(show, &device, {Text("<script>:3: x")}).first().toStdString(), "<script>:3: x");
}

TEST(ScriptPlaces, ArePartsForPrograms) {
    const QJsonObject place =
        PlaceJson({Text("a.js:2:9: Error: bad: thing"), Text("| x = y"), Text("|     ^"), Text("at f (a.js:2)"),
                   Text("at the top level (a.js:9)"), Text("note: write z")});
    EXPECT_EQ(place.value(Text("file")).toString(), Text("a.js"));
    EXPECT_EQ(place.value(Text("line")).toInt(), 2);
    EXPECT_EQ(place.value(Text("column")).toInt(), 9);
    EXPECT_EQ(place.value(Text("message")).toString(), Text("Error: bad: thing"));
    EXPECT_EQ(place.value(Text("source")).toString(), Text("x = y"));
    EXPECT_EQ(place.value(Text("note")).toString(), Text("write z"));
    EXPECT_EQ(place.value(Text("calls")).toArray().at(1).toObject().value(Text("function")).toString(),
              Text("the top level"));
    EXPECT_TRUE(PlaceJson({}).isEmpty());
    EXPECT_TRUE(PlaceJson({Text("nothing of the kind")}).isEmpty());
}
