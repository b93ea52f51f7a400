#pragma once
// The three logs: the debug log, the vote data log and the chart log. Each line is
// opened, written and closed on its own, so a crash loses nothing and no handle is held.

#include <QString>
#include <QtGlobal>

namespace tallix {

struct Services;

struct LogTiming {
    qint64 FrequencyTicks = 0;
    qint64 FirstCounter = 0;
    qint64 ClockBaseCounter = 0;
    float ClockBaseSeconds = 0;
};

QString DebugLogPath(const Services& s);
QString VoteDataLogPath(const Services& s);
QString ChartLogPath(const Services& s);

void WriteDebugLog(Services& s, float elapsed, const QString& text, const QString& module,
                   const QString& procedure, short force = 0);
void WriteVoteDataLog(Services& s, const QString& tag, const QString& data);
void debug_log(Services& s, const QString& text);
QString TimeStampText(Services& s);

// Seconds between two readings of the performance counter.
double CounterSeconds(Services& s, qint64 from, qint64 to);

// The runtime's Format for patterns such as "000.000": zero-padded to the integer
// digits, widening rather than cutting; rounds half away from zero.
QString FormatFixed(double value, int intDigits, int decimals);

} // namespace tallix
