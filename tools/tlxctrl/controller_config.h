#pragma once
// tlxctrl.ini: the bases this controller pretends to own and the keypads-not-voted
// settings it reports, and the settings block it answers BaseInfo with.

#include <QList>
#include <QString>
#include <QStringList>

namespace tallix {

class Environment;

struct BaseConfig {
    int index = 0;       // base index, from 0
    QString type;        // BASETYPE value, e.g. TALLIX, KBOARD, GrandHub
    int offset = 0;      // added to the base's local keypad numbers
    int low = 1;         // lowest local keypad number
    int high = 100;      // highest local keypad number
    bool inUse = true;

    // Room keypad numbers served by this base: low + offset .. high + offset.
    int firstKeypad() const { return low + offset; }
    int lastKeypad() const { return high + offset; }
};

struct ControllerConfig {
    QList<BaseConfig> bases; // ascending by index
    int maxKeypads = -1;     // -1: the number of keypads on the bases in use
    int keypadsNotVotedLo = -1; // -1: lowest keypad of the bases in use
    int keypadsNotVotedHi = -1; // -1: highest keypad of the bases in use
    int popupOn = 0;
    int howManyToShow = 20;
    int closeByPercent = 0;
    double closePercent = 100;
    int numKeypads = -1;     // -1: the effective MAXKEYPADS
    bool useOffsets = false;
    bool scrollingDisplay = false;

    QList<BaseConfig> basesInUse() const;
    // Every keypad number of the bases in use, ascending, each once.
    QList<int> roomKeypads() const;
    // The base in use that serves keypad k, or -1.
    int baseOfKeypad(int k) const;
    int effectiveMaxKeypads() const;
    int effectiveLo() const;
    int effectiveHi() const;

    // One TALLIX base with keypads 1 to 100.
    static ControllerConfig defaults();
};

struct ConfigResult {
    ControllerConfig config;
    QStringList errors; // each "file line n: reason"; empty when the file is good
    bool ok() const { return errors.isEmpty(); }
};

ConfigResult ParseControllerConfig(const QString& text, const QString& fileName = "tlxctrl.ini");
// A missing file gives the defaults; an unreadable one an error.
ConfigResult LoadControllerConfig(const QString& path);

// The per-user tallix folder's tlxctrl.ini wins whole when it exists, else the
// all-users one; empty when neither exists.
QString FindControllerConfig(const Environment& env);

// The reply to BaseInfo: one KEY=value line per setting, each ended by CR LF, with
// MAXKEYPADS always present.
QString BuildBaseInfoReply(const ControllerConfig& config);

} // namespace tallix
