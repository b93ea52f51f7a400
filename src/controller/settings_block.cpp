// The settings block a controller sends in reply to BaseInfo.

#include "comms.h"

#include "foundation/numbers.h"
#include "results/common_io.h"
#include "vote/run_context.h"

#include <cmath>

namespace tallix {

namespace {

short toShort(const QString& v)
{
    return RoundToShort(tlxVal(v));
}
qint32 toLong(const QString& v)
{
    return RoundToLong(tlxVal(v));
}

// A base's number indexes a table, and a range of keypads is listed keypad by keypad:
// beyond these a block is not from a base station.
constexpr qint32 kMaxBase = 255;
constexpr qint64 kMaxRangeKeypads = 1000000;
bool toBool(const QString& v)
{
    const QString t = v.trimmed();
    if (t.compare("True", Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare("False", Qt::CaseInsensitive) == 0)
        return false;
    return tlxVal(t) != 0;
}

} // namespace

bool HandleSettingsBlock(RunContext& ctx, const QString& text)
{
    // A block is lines of key=value; vote data holds no '=' and can be long.
    if (!text.contains(u'=') || !text.toUpper().contains("BASETYPE"))
        return false;
    bool sawOffsets = false;
    int row = 0;
    const QStringList lines = text.split("\r\n");
    for (const QString& line : lines) {
        if (!line.contains('='))
            continue;
        const QStringList parts = line.split('=');
        const QString key = parts[0].toUpper();
        const QString value = parts[1];
        if (key == "MAXKEYPADS") {
            ctx.maxKeypads = toLong(value);
            if (ctx.comms)
                ctx.comms->chk_WaitingForData = 0;
        } else if (key == "KEYPADSNOTVOTEDLO") {
            ctx.firstKeypad = toLong(value);
        } else if (key == "KEYPADSNOTVOTEDHI") {
            ctx.keypadUniverse = toLong(value);
        } else if (key == "BASETYPE") {
            // One line comes per base; a keyboard base replaces whatever came before.
            if (ctx.BaseType.isEmpty() || value.toUpper() == "KBOARD")
                ctx.BaseType = value;
            else
                ctx.BaseType += "|" + value;
        } else if (key == "KEYPADSNOTVOTEDPOPUPON") {
            ctx.notVotedPopupAt = toShort(value);
        } else if (key == "KEYPADSNOTVOTEDHOWMANYTOSHOW") {
            ctx.notVotedShowCount = toShort(value);
        } else if (key == "KEYPADSNOTVOTEDCLOSE") {
            ctx.autoEndByPercent = toShort(value);
        } else if (key == "KEYPADSNOTVOTEDCLOSEPERCENT") {
            ctx.autoEndPercent = float(tlxVal(value));
        } else if (key == "NUMKEYPADS") {
            ctx.numKeypads = toLong(value);
        } else if (key == "SCROLLINGDISPLAY") {
            ctx.scrollingDisplay = toBool(value);
        } else if (key == "USEOFFSETS") {
            ctx.useOffsets = toBool(value);
        } else if (key == "OFFSET") {
            const QStringList f = value.split(',');
            if (!sawOffsets) {
                ctx.allKeypadsText.clear();
                sawOffsets = true;
                row = 0;
            }
            ctx.respondedKeypads.clear();
            if (f.size() < 5)
                Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
            const int base = TruncToLong(tlxVal(f[0]));
            if (base < 0 || base > kMaxBase)
                Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
            const short offset = toShort(f[1]);
            if (base > ctx.baseOffsets.ubound())
                ctx.baseOffsets.redimPreserve(base);
            ctx.baseOffsets(base) = offset;
            if (f[4] != "False")
                continue;
            const qint32 low = RoundToLong(double(toLong(f[2])) + offset);
            const qint32 high = RoundToLong(double(toLong(f[3])) + offset);
            if (qint64(high) - low + 1 > kMaxRangeKeypads)
                Raise(ErrNo::Overflow, QStringLiteral("Overflow"));
            const std::vector<bool> active = ActiveKeypadFlags(ctx.activeKeypads, high);
            QString& all = ctx.allKeypadsText;
            all.reserve(all.size() + std::max<qsizetype>(0, high - low + 1) * 6);
            for (qint64 k = low; k <= high; ++k) {
                all += NumberText(qint32(k)) + u',';
                if (k >= 0 && size_t(k) < active.size() && active[size_t(k)]) {
                    ctx.keypadRows.redimPreserve(row);
                    ctx.keypadRows(row) = QString::number(k - offset) + "," + QString::number(offset) + "," +
                                          QString::number(base);
                    ++row;
                }
            }
        }
        // Handled lines are taken out of the buffer, which matters only for text that
        // arrived while this block was read.
        if (ctx.comms)
            ctx.comms->dropFromBuffer(line + "\r\n");
    }
    if (sawOffsets && ActiveKeypadsTag(ctx).isEmpty()) {
        short all = 1;
        WriteActiveKeypads(ctx, all);
    }
    return true;
}

} // namespace tallix
