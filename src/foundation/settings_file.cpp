#include "settings_file.h"

#include "environment.h"
#include "error_report.h"
#include "numbers.h"
#include "services.h"

#include <QFile>
#include <QTextStream>

namespace tallix {

namespace {

// The operating system's profile reader fills a buffer of 255 characters, one of them
// the terminating zero.
constexpr int kValueLimit = 254;

QString unquote(QString v)
{
    if (v.size() >= 2 && ((v.front() == '"' && v.back() == '"') || (v.front() == '\'' && v.back() == '\'')))
        return v.mid(1, v.size() - 2);
    return v;
}

} // namespace

QString ReadINIValue(const QString& section, const QString& key, const QString& defaultValue, const QString& path)
{
    if (!FileExists(path))
        return defaultValue;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        return defaultValue;
    QTextStream in(&f);
    bool inSection = false;
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.startsWith('[')) {
            const qsizetype close = line.indexOf(']');
            const QString name = line.mid(1, close < 0 ? -1 : close - 1).trimmed();
            inSection = name.compare(section, Qt::CaseInsensitive) == 0;
            continue;
        }
        if (!inSection || line.startsWith(';'))
            continue;
        const qsizetype eq = line.indexOf('=');
        if (eq < 0)
            continue;
        if (line.left(eq).trimmed().compare(key, Qt::CaseInsensitive) != 0)
            continue;
        const QString value = unquote(line.mid(eq + 1).trimmed()).left(kValueLimit);
        return value.isEmpty() ? defaultValue : value;
    }
    return defaultValue;
}

QString PerUserIniPath(const Environment& env)
{
    return JoinPath(env.perUserBase(), "\\tallix\\tlx.ini");
}

QString AllUsersIniPath(const Environment& env)
{
    return JoinPath(env.allUsersBase(), "\\tallix\\tlx.ini");
}

QString ReadIniSetting(const Environment& env, const QString& section, const QString& key,
                       const QString& perUserDefault, const QString& allUsersDefault, bool onWhenNoFile)
{
    const QString perUser = PerUserIniPath(env);
    QString value = ReadINIValue(section, key, perUserDefault, perUser);
    if (!FileExists(perUser)) {
        const QString allUsers = AllUsersIniPath(env);
        value = ReadINIValue(section, key, allUsersDefault, allUsers);
        // With no file anywhere the debug log is on: an unconfigured machine must leave a trace.
        if (onWhenNoFile && !FileExists(allUsers))
            value = "1";
    }
    return value;
}

namespace {
bool flag(const Environment& env, const char* section, const char* key, const char* perUser, const char* allUsers,
          bool onWhenNoFile = false)
{
    return tlxVal(ReadIniSetting(env, section, key, perUser, allUsers, onWhenNoFile)) != 0;
}
} // namespace

void ReadGlobalSettingsFromINIFile(Services& s)
{
    Guarded(s, "Common_PublicFunctions", "ReadGlobalSettingsFromINIFile", s.ShowErrors, [&] {
        const Environment& e = s.env;
        IniSwitches& i = s.ini;
        i.logEventsToFile = flag(e, "DEBUG", "LOGEVENTS TO FILE", "0", "1", true);
        i.disableParticipantList = flag(e, "DEBUG", "DISABLE PARTICIPANT LIST", "0", "0");
        i.showAllErrors = flag(e, "DEBUG", "SHOW ALL ERRORS", "0", "0");
        i.minimizeWindowsOnSlideShowStart = flag(e, "DEBUG", "MINIMIZE WINDOWS ON SLIDE SHOW START", "0", "0");
        i.disableForceSlideShowTopmost = flag(e, "DEBUG", "DISABLE FORCE SLIDE SHOW TOPMOST", "0", "0");
        i.disableForceSlideShowNotopmost = flag(e, "DEBUG", "DISABLE FORCE SLIDE SHOW NOTOPMOST", "0", "0");
        i.disableDisablingPPTWindows = flag(e, "DEBUG", "DISABLE DISABLING PPT WINDOWS", "1", "1");
        i.hidePPTEditWindowsInSetResultsDisplayMode =
            flag(e, "DEBUG", "HIDE PPT EDIT WINDOWS IN SET RESULTS DISPLAY MODE", "0", "0");
        i.disablePPTSaveAfterVoteClose = flag(e, "DEBUG", "DISABLE PPT SAVE AFTER VOTE CLOSE", "1", "1");
        i.debugAcceptDetectAsVotes = flag(e, "QUILMARK OPTIONS", "DEBUG ACCEPT DETECT AS VOTES", "0", "0");
        i.chartExportFormat = ReadIniSetting(e, "TALLIX OPTIONS", "CHART EXPORT FORMAT", "EMF", "EMF");
        i.showBaseStatusDuringLiveVote = flag(e, "QUILMARK OPTIONS", "SHOW BASE STATUS DURING LIVE VOTE", "0", "0");
    });
}

} // namespace tallix
