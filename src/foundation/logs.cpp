#include "logs.h"

#include "clock.h"
#include "environment.h"
#include "services.h"

#include <QFile>

#include <cmath>

namespace tallix {

namespace {

void appendLine(const QString& path, const QString& line)
{
    // A log that cannot be written is silently skipped: logging must never stop a vote.
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    f.write((line + "\r\n").toUtf8());
}

double roundAway(double v, int places)
{
    const double scale = std::pow(10.0, places);
    return std::round(v * scale) / scale;
}

QString today(const Services& s, const char* format)
{
    return s.clock->now().date().toString(QString::fromLatin1(format));
}

qint64 frequency(Services& s)
{
    if (s.logTiming.FrequencyTicks == 0) {
        s.logTiming.FrequencyTicks = s.clock->perfFrequency();
        if (s.logTiming.FrequencyTicks == 0)
            s.logTiming.FrequencyTicks = 1;
    }
    return s.logTiming.FrequencyTicks;
}

} // namespace

QString FormatFixed(double value, int intDigits, int decimals)
{
    const double r = roundAway(std::fabs(value), decimals);
    QString text = QString::number(r, 'f', decimals);
    const qsizetype point = decimals > 0 ? text.indexOf('.') : text.size();
    if (point < intDigits)
        text.prepend(QString(intDigits - point, '0'));
    if (value < 0 && r != 0)
        text.prepend('-');
    return text;
}

double CounterSeconds(Services& s, qint64 from, qint64 to)
{
    return double(to - from) / double(frequency(s));
}

QString DebugLogPath(const Services& s)
{
    return JoinPath(s.env.tempFolder(), "\\tlx_debug_" + today(s, "yyyy_MM_dd") + ".log");
}

QString VoteDataLogPath(const Services& s)
{
    return JoinPath(s.env.tempFolder(), "\\tlx_vote_data_debug_" + today(s, "yyyy_MM_dd") + ".log");
}

QString ChartLogPath(const Services& s)
{
    return JoinPath(s.env.tempFolder(), "\\tallix\\debug_log.txt");
}

QString TimeStampText(Services& s)
{
    const qint64 freq = frequency(s);
    LogTiming& t = s.logTiming;
    if (t.ClockBaseSeconds == 0) {
        t.ClockBaseCounter = s.clock->perfCounter();
        t.ClockBaseSeconds = float(s.clock->secondsSinceMidnight());
    }
    // Held to four decimals, as the fixed-point type of the original held it. The base is
    // taken once, so a run past midnight reads 24 hours and on rather than wrapping.
    double secs = double(t.ClockBaseSeconds) + double(s.clock->perfCounter() - t.ClockBaseCounter) / double(freq);
    secs = std::round(secs * 10000.0) / 10000.0;
    const qint64 hours = qint64(std::trunc(secs / 3600)) % 60;
    const qint64 minutes = qint64(std::trunc(secs / 60)) % 60;
    const qint64 whole = qint64(std::trunc(secs)) % 60;
    const double fraction = roundAway(secs - std::trunc(secs), 3);
    return QStringLiteral("[%1:%2:%3]")
        .arg(hours, 2, 10, QLatin1Char('0'))
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(FormatFixed(double(whole) + fraction, 2, 3));
}

void WriteDebugLog(Services& s, float elapsed, const QString& text, const QString& module, const QString& procedure,
                   short force)
{
    if (!s.ini.logEventsToFile && force == 0)
        return;
    const QString name = s.app.exeName.rightJustified(8, ' ');
    if (s.logTiming.FirstCounter == 0)
        s.logTiming.FirstCounter = s.clock->perfCounter();
    const double sinceFirst = roundAway(float(CounterSeconds(s, s.logTiming.FirstCounter, s.clock->perfCounter())), 3);
    const QString line = "[" + today(s, "dd/MM/yy") + "] " + TimeStampText(s) + " | " + FormatFixed(sinceFirst, 6, 3) +
                         " | " + name + ".exe (" + QString::number(s.app.major) + "." + QString::number(s.app.minor) +
                         "." + QStringLiteral("%1").arg(s.app.revision, 2, 10, QLatin1Char('0')) + ") | " +
                         FormatFixed(roundAway(elapsed, 3), 3, 3) + " | [" + module + "] | [" + procedure + "] | " +
                         text;
    appendLine(DebugLogPath(s), line);
}

void WriteVoteDataLog(Services& s, const QString& tag, const QString& data)
{
    appendLine(VoteDataLogPath(s), "[" + today(s, "dd/MM/yy") + "] " + TimeStampText(s) + " | " + tag.toUpper() + "|" +
                                       data);
}

void debug_log(Services& s, const QString& text)
{
    appendLine(ChartLogPath(s), "[" + s.clock->now().toString("dd/MM/yyyy hh:mm:ss") + "] " + text);
}

} // namespace tallix
