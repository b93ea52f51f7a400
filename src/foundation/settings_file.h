#pragma once
// tlx.ini: machine-wide and per-user switches, read once at start, never written here.

#include <QString>

namespace tallix {

class Environment;
struct Services;

struct IniSwitches {
    bool logEventsToFile = false;
    bool showAllErrors = false;
    bool disableParticipantList = false;
    bool minimizeWindowsOnSlideShowStart = false;
    bool disableForceSlideShowTopmost = false;
    bool disableForceSlideShowNotopmost = false;
    bool disableDisablingPPTWindows = false;
    bool hidePPTEditWindowsInSetResultsDisplayMode = false;
    bool disablePPTSaveAfterVoteClose = false;
    bool debugAcceptDetectAsVotes = false;
    bool showBaseStatusDuringLiveVote = false;
    QString chartExportFormat;
};

// One value: the first match of section and key (neither case-sensitive), cut at 254
// characters; a missing file, a missing key and an empty value all give the default.
QString ReadINIValue(const QString& section, const QString& key, const QString& defaultValue,
                     const QString& path);

QString PerUserIniPath(const Environment& env);
QString AllUsersIniPath(const Environment& env);

// One switch: the per-user file wins whole whenever it exists; the all-users file is
// read only when it is missing.
QString ReadIniSetting(const Environment& env, const QString& section, const QString& key,
                       const QString& perUserDefault, const QString& allUsersDefault,
                       bool onWhenNoFile = false);

void ReadGlobalSettingsFromINIFile(Services& s);

} // namespace tallix
