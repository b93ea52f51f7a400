#include "controller_config.h"

#include <gtest/gtest.h>

using namespace tallix;

namespace {

const char* kTwoBases = R"(; a room with two bases and a spare
[Controller]
KeypadsNotVotedPopupOn = 5
KeypadsNotVotedHowManyToShow=12
KeypadsNotVotedClose=1
KeypadsNotVotedClosePercent=62.5 ; of the active keypads
UseOffsets=True
ScrollingDisplay=yes

[Base1]
Type=GrandHub
Offset=100
Low=1
High=3

[base0] ; the first base
type=TALLIX
offset=0
low=1
high=4

[Base2]
Type=m7
Low=1
High=50
InUse=False
)";

} // namespace

TEST(TlxctrlConfig, BaseInfoReplyOfATwoBaseRoom)
{
    const ConfigResult r = ParseControllerConfig(kTwoBases);
    ASSERT_TRUE(r.ok()) << r.errors.join('\n').toStdString();
    EXPECT_EQ(r.config.roomKeypads(), (QList<int>{1, 2, 3, 4, 101, 102, 103}));
    EXPECT_EQ(r.config.baseOfKeypad(102), 1);
    EXPECT_EQ(r.config.baseOfKeypad(5), -1);

    // Bases in index order; the spare base has an offset line but no type line.
    EXPECT_EQ(BuildBaseInfoReply(r.config).toStdString(),
              "BASETYPE=TALLIX\r\n"
              "BASETYPE=GrandHub\r\n"
              "KEYPADSNOTVOTEDLO=1\r\n"
              "KEYPADSNOTVOTEDHI=103\r\n"
              "KEYPADSNOTVOTEDPOPUPON=5\r\n"
              "KEYPADSNOTVOTEDHOWMANYTOSHOW=12\r\n"
              "KEYPADSNOTVOTEDCLOSE=1\r\n"
              "KEYPADSNOTVOTEDCLOSEPERCENT=62.5\r\n"
              "NUMKEYPADS=7\r\n"
              "USEOFFSETS=True\r\n"
              "SCROLLINGDISPLAY=True\r\n"
              "OFFSET=0,0,1,4,False\r\n"
              "OFFSET=1,100,1,3,False\r\n"
              "OFFSET=2,0,1,50,True\r\n"
              "MAXKEYPADS=7\r\n");
}

TEST(TlxctrlConfig, ExplicitLimitsWinOverTheRoomAndNoFileMeansOneBase)
{
    const ConfigResult r = ParseControllerConfig("[Controller]\nMaxKeypads=40\nKeypadsNotVotedLo=3\n"
                                                 "KeypadsNotVotedHi=30\nNumKeypads=25\n[Base0]\nType=KBOARD\nLow=1\nHigh=500\n");
    ASSERT_TRUE(r.ok());
    const QString reply = BuildBaseInfoReply(r.config);
    for (const char* line : {"MAXKEYPADS=40\r\n", "KEYPADSNOTVOTEDLO=3\r\n", "KEYPADSNOTVOTEDHI=30\r\n", "NUMKEYPADS=25\r\n"})
        EXPECT_TRUE(reply.contains(line)) << line;

    const ConfigResult none = LoadControllerConfig("");
    ASSERT_TRUE(none.ok());
    EXPECT_TRUE(BuildBaseInfoReply(none.config).startsWith("BASETYPE=TALLIX\r\n"));
    EXPECT_TRUE(BuildBaseInfoReply(none.config).endsWith("MAXKEYPADS=100\r\n"));
}

TEST(TlxctrlConfig, BadFilesSayWhereAndWhy)
{
    struct Case {
        const char* text;
        const char* expected; // part of the one error
    } cases[] = {
        {"[Base0]\nType=TALLIX\nHigh=ten\n", "line 3: High \"ten\" is not a whole number"},
        {"[Base0]\nType=TALLIX\nColour=red\n", "line 3: unknown key Colour"},
        {"[Bases]\n[Base0]\nType=TALLIX\n", "line 1: unknown section [Bases]"},
        {"[Base0]\nLow=1\n", "line 1: base 0 has no Type"},
        {"[Base0]\nType=A=B\n", "line 2: Type \"A=B\""},
        {"[Base0]\nType=X\n[Base0]\nType=Y\n", "line 3: base 0 is described twice"},
        {"[Base0]\nType=X\nInUse=maybe\n", "line 3: InUse \"maybe\" is not True or False"},
        {"[Base0]\nType=X\nInUse=False\n", "no base is in use"},
        {"[Base0]\nType=X\nOffset=40000\n", "line 3: Offset 40000 is outside -32768 to 32767"},
        {"MaxKeypads=3\n[Base0]\nType=X\n", "line 1: MaxKeypads stands outside any section"},
        {"[Controller]\nKeypadsNotVotedClosePercent=150\n", "line 2: KeypadsNotVotedClosePercent 150 is above 100"},
        {"[Controller\n", "line 1: section header"},
    };
    for (const auto& c : cases) {
        const ConfigResult r = ParseControllerConfig(c.text, "t.ini");
        ASSERT_FALSE(r.errors.isEmpty()) << c.text << r.errors.join('\n').toStdString();
        EXPECT_TRUE(r.errors[0].startsWith("t.ini ")) << r.errors[0].toStdString();
        EXPECT_TRUE(r.errors[0].contains(c.expected)) << r.errors[0].toStdString();
    }
}
