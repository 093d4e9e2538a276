#include "DeviceFixture.h"

namespace {

using DeviceScriptClasses = DeviceFixture;

TEST_F(DeviceScriptClasses, WorkWithBytes) {
    GivenScript("({ F: function (t) { var b = new Buffer(t); b[b.length] = 33; return b.left(2).concat([b, new "
                "Buffer('?')]) } })");
    EXPECT_EQ(Call("F", {"abc"}), "abc!?");
}

TEST_F(DeviceScriptClasses, WorkWithChecksums) {
    GivenScript("({ F: function (t) { var c = new Checksum(); c.Init('Crc16', 2, false, true);"
                "  return c.ComputeChecksum(t) } })");
    EXPECT_EQ(Call("F", {"123456789"}), "123456789BB3D");
}

TEST_F(DeviceScriptClasses, WorkWithXml) {
    GivenScript(
        "({ F: function (t) { var d = new XMLDocument(); d.Parse(t); if (d.Error()) return 'error';"
        "  var e = d.CreateElement('new'); d.DocumentElement().AppendChild(e);"
        "  return d.DocumentElement().Attribute('x') + d.DocumentElement().FirstChildElement().GetTagName() } })");
    EXPECT_EQ(Call("F", {"<a x='5'/>"}), "5new");
    EXPECT_EQ(Call("F", {"<a"}), "error");
}

TEST_F(DeviceScriptClasses, ReportARefusedSizeInTheErrorVariable) {
    GivenScript("({ F: function (n) { new Buffer(Number(n)) }, G: function () { return 'alive' } })");
    Call("F", {"2147483647"});
    EXPECT_EQ(Error(), "Script: Buffer: no memory for 2147483647 bytes");
    EXPECT_EQ(Call("G"), "alive");
}

TEST_F(DeviceScriptClasses, AreNotPublishedByAScriptThatEndsInThis) {
    GivenScript("this.Mine = function () { return typeof Buffer + typeof Checksum + typeof XMLDocument }; this");
    EXPECT_EQ(variables.functions.Text(), "Mine\n");
    EXPECT_EQ(Call("Mine"), "functionfunctionfunction");
}

} // namespace
