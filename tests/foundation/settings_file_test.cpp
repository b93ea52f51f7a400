#include "foundation/settings_file.h"
#include "support/test_services.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestServices;

namespace {

void writeIni(TestServices& t, const char* base, const QByteArray& body)
{
    TestServices::write(t.path(base) + "/tallix/tlx.ini", body);
}

TEST(ReadINIValue, FirstMatchCaseBlindEmptyIsAbsentAndLongValuesAreCut)
{
    TestServices t;
    const QString ini = t.path("x.ini");
    TestServices::write(ini, "; comment\r\n[Debug]\r\nkey = first\r\nKEY=second\r\nempty=\r\n"
                             "long=" + QByteArray(300, 'a') + "\r\n[Other]\r\nonly=here\r\n");
    EXPECT_EQ(ReadINIValue("DEBUG", "key", "d", ini), "first");
    EXPECT_EQ(ReadINIValue("DEBUG", "empty", "d", ini), "d");
    EXPECT_EQ(ReadINIValue("DEBUG", "missing", "d", ini), "d");
    EXPECT_EQ(ReadINIValue("DEBUG", "only", "d", ini), "d");
    EXPECT_EQ(ReadINIValue("DEBUG", "long", "d", ini).size(), 254);
    EXPECT_EQ(ReadINIValue("DEBUG", "key", "d", t.path("nope.ini")), "d");
}

TEST(ReadGlobalSettings, NoFileAnywhereGivesAllUsersDefaultsWithTheLogOn)
{
    TestServices t;
    ReadGlobalSettingsFromINIFile(t.s);
    EXPECT_TRUE(t.s.ini.logEventsToFile);
    EXPECT_TRUE(t.s.ini.disableDisablingPPTWindows);
    EXPECT_TRUE(t.s.ini.disablePPTSaveAfterVoteClose);
    EXPECT_FALSE(t.s.ini.showAllErrors);
    EXPECT_EQ(t.s.ini.chartExportFormat, "EMF");
}

TEST(ReadGlobalSettings, ThePerUserFileWinsWholeEvenWithoutTheKey)
{
    TestServices t;
    writeIni(t, "appdata", "[DEBUG]\nSHOW ALL ERRORS=1\n");
    writeIni(t, "allusers", "[DEBUG]\nLOGEVENTS TO FILE=1\nDISABLE PARTICIPANT LIST=1\n");
    ReadGlobalSettingsFromINIFile(t.s);
    EXPECT_FALSE(t.s.ini.logEventsToFile);
    EXPECT_FALSE(t.s.ini.disableParticipantList);
    EXPECT_TRUE(t.s.ini.showAllErrors);
}

TEST(ReadGlobalSettings, TheAllUsersFileServesWhenThePerUserFileIsMissing)
{
    TestServices t;
    writeIni(t, "allusers", "[DEBUG]\nDISABLE PARTICIPANT LIST=1\n");
    ReadGlobalSettingsFromINIFile(t.s);
    EXPECT_TRUE(t.s.ini.disableParticipantList);
    EXPECT_TRUE(t.s.ini.logEventsToFile); // its all-users default
}

struct FlagCase {
    const char* value;
    bool expected;
};
class FlagValues : public ::testing::TestWithParam<FlagCase> {};

TEST_P(FlagValues, ReadThroughTheNumberReader)
{
    TestServices t;
    writeIni(t, "appdata", QByteArray("[QUILMARK OPTIONS]\nSHOW BASE STATUS DURING LIVE VOTE=") + GetParam().value + "\n");
    ReadGlobalSettingsFromINIFile(t.s);
    EXPECT_EQ(t.s.ini.showBaseStatusDuringLiveVote, GetParam().expected) << GetParam().value;
}

INSTANTIATE_TEST_SUITE_P(Values, FlagValues,
                         ::testing::Values(FlagCase{"1", true}, FlagCase{"-1", true}, FlagCase{"2", true},
                                           FlagCase{"abc", false}, FlagCase{"0", false}, FlagCase{"", false}));

TEST(ReadGlobalSettings, ExportFormatKeepsItsCaseAndWindowsPathsAreMapped)
{
    TestServices t;
    // APPDATA written the Windows way still finds the file.
    t.s.env.set("APPDATA", t.path("appdata").replace('/', '\\'));
    writeIni(t, "appdata", "[TALLIX OPTIONS]\nCHART EXPORT FORMAT=bmp\n");
    ReadGlobalSettingsFromINIFile(t.s);
    EXPECT_EQ(t.s.ini.chartExportFormat, "bmp");
    EXPECT_EQ(t.s.ini.chartExportFormat.toUpper(), "BMP");
}

TEST(IniPaths, FallBackToTheUsualLinuxFolders)
{
    const Environment e = Environment::fromMap({{"HOME", "/home/ann"}});
    EXPECT_EQ(PerUserIniPath(e), "/home/ann/.config/tallix/tlx.ini");
    EXPECT_EQ(AllUsersIniPath(e), "/etc/xdg/tallix/tlx.ini");
    const Environment x = Environment::fromMap({{"XDG_CONFIG_HOME", "/cfg"}});
    EXPECT_EQ(PerUserIniPath(x), "/cfg/tallix/tlx.ini");
}

} // namespace
