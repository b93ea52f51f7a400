#include "numbers.h"

#include "vb_error.h"

#include <QLocale>

#include <cmath>
#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>

namespace tallix {

namespace {

const NumberSeparators* g_override = nullptr;

NumberSeparators fromProcessLocale()
{
    const QLocale loc = QLocale::system();
    return {loc.decimalPoint(), loc.groupSeparator()};
}

bool isDigit(QChar c) { return c >= '0' && c <= '9'; }

// Parses a number from s starting at i, "." as the decimal point; returns the
// characters consumed (0 when there is no number).
qsizetype parseDecimal(const QString& s, qsizetype i, double& out)
{
    const qsizetype start = i;
    QString digits;
    if (i < s.size() && (s[i] == '+' || s[i] == '-'))
        digits += s[i++];
    bool any = false;
    while (i < s.size() && isDigit(s[i])) {
        digits += s[i++];
        any = true;
    }
    if (i < s.size() && s[i] == '.') {
        digits += s[i++];
        while (i < s.size() && isDigit(s[i])) {
            digits += s[i++];
            any = true;
        }
    }
    if (!any) {
        out = 0;
        return 0;
    }
    // Exponent only when digits follow it: "2e" is 2, "2e3" is 2000.
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
        qsizetype j = i + 1;
        QString exp = "e";
        if (j < s.size() && (s[j] == '+' || s[j] == '-'))
            exp += s[j++];
        if (j < s.size() && isDigit(s[j])) {
            while (j < s.size() && isDigit(s[j]))
                exp += s[j++];
            digits += exp;
            i = j;
        }
    }
    out = digits.toDouble();
    if (!std::isfinite(out))
        Raise(ErrNo::Overflow, "Overflow");
    return i - start;
}

double roundHalfEven(double v)
{
    return std::nearbyint(v); // default rounding mode is to nearest, ties to even
}

} // namespace

const NumberSeparators& MachineSeparators()
{
    if (g_override)
        return *g_override;
    static const NumberSeparators machine = fromProcessLocale();
    return machine;
}

void SetMachineSeparatorsForTesting(const NumberSeparators* override)
{
    g_override = override;
}

ScopedSeparators::ScopedSeparators(QString decimal, QString thousand) : seps_{std::move(decimal), std::move(thousand)}
{
    SetMachineSeparatorsForTesting(&seps_);
}

ScopedSeparators::~ScopedSeparators()
{
    SetMachineSeparatorsForTesting(nullptr);
}

double Val(const QString& text)
{
    QString s;
    s.reserve(text.size());
    for (QChar c : text)
        if (c != ' ' && c != '\t' && c != '\n')
            s += c;
    if (s.size() >= 2 && s[0] == '&') {
        const QChar kind = s[1].toUpper();
        const int base = kind == 'H' ? 16 : kind == 'O' ? 8 : 0;
        if (base) {
            qsizetype i = 2;
            QString digits;
            while (i < s.size() && QString("0123456789ABCDEF").left(base).contains(s[i].toUpper()))
                digits += s[i++];
            bool ok = false;
            const qlonglong v = digits.toLongLong(&ok, base);
            return ok ? double(v) : 0.0;
        }
    }
    double v = 0;
    parseDecimal(s, 0, v);
    return v;
}

double tlxVal(QStringView text)
{
    // Keypad numbers, votes and counters are short plain integers, and a burst of votes
    // reads tens of thousands of them: those skip the general reader, to the same value.
    if (const qsizetype n = text.size(); n > 0 && n <= 9) {
        const bool negative = text[0] == '-';
        qsizetype i = negative ? 1 : 0;
        qint64 v = 0;
        bool plain = i < n;
        for (; plain && i < n; ++i) {
            plain = isDigit(text[i]);
            v = v * 10 + (text[i].unicode() - '0');
        }
        if (plain)
            return negative ? -double(v) : double(v);
    }
    QString s = text.toString();
    const QString sep = MachineSeparators().decimal;
    // The local separator becomes a point before commas are removed: on a comma-decimal
    // machine "1,5" is 1.5, on a point-decimal one it is 15.
    if (sep != ".")
        s.replace(sep, ".");
    for (const char* junk : {",", " ", "_", "#", "%"})
        s.remove(QLatin1String(junk));
    try {
        return Val(s);
    } catch (const VbError&) {
        return 0; // an overflowing number reads as none, silently
    }
}

std::optional<qint32> PlainNumber(QStringView text)
{
    const qsizetype n = text.size();
    if (n == 0 || n > 9 || (n > 1 && text[0] == u'0'))
        return std::nullopt;
    qint32 v = 0;
    for (QChar c : text) {
        if (!isDigit(c))
            return std::nullopt;
        v = v * 10 + (c.unicode() - '0');
    }
    return v;
}

namespace {

// The texts of 0..65535 live in blocks that are made on first use and never move or go,
// so NumberText hands out strings over them that copy and free without touching a
// reference count, let alone the heap.
constexpr qint32 kBlockNumbers = 1024;
constexpr qint32 kSlot = 6; // "65535" and its terminating zero
constexpr qint32 kBlocks = 64;

const char16_t* numberBlock(qint32 block)
{
    static std::atomic<char16_t*> blocks[kBlocks];
    char16_t* made = blocks[block].load(std::memory_order_acquire);
    if (made)
        return made;
    auto fresh = std::make_unique<char16_t[]>(size_t(kBlockNumbers) * kSlot);
    for (qint32 i = 0; i < kBlockNumbers; ++i) {
        const QString text = QString::number(block * kBlockNumbers + i);
        std::copy(text.utf16(), text.utf16() + text.size(), fresh.get() + size_t(i) * kSlot);
    }
    // A thread that lost the race keeps the other's block.
    if (blocks[block].compare_exchange_strong(made, fresh.get(), std::memory_order_acq_rel))
        return fresh.release();
    return made;
}

} // namespace

QString NumberText(qint32 n)
{
    if (n < 0 || n >= kBlockNumbers * kBlocks)
        return QString::number(n);
    const char16_t* text = numberBlock(n / kBlockNumbers) + size_t(n % kBlockNumbers) * kSlot;
    const qsizetype length = n < 10 ? 1 : n < 100 ? 2 : n < 1000 ? 3 : n < 10000 ? 4 : 5;
    return QString::fromRawData(reinterpret_cast<const QChar*>(text), length);
}

QString SharedText(QStringView text)
{
    if (const std::optional<qint32> n = PlainNumber(text))
        return NumberText(*n);
    return text.toString();
}

QString Get_localDecimal()
{
    return MachineSeparators().decimal;
}

QString Get_localThousand()
{
    return MachineSeparators().thousand;
}

QString NumberFormatFor(double value)
{
    // The pattern is in the chart surface's own terms, "," groups and "." starts the
    // fraction; the surface shows them with the locale's marks.
    QString pattern = "##0";
    const QString whole = QString::number(std::trunc(value), 'f', 0);
    while (pattern.size() < whole.size())
        pattern += ",###";
    if (value != std::trunc(value))
        pattern += ".0#########";
    return pattern;
}

QChar NumberMarkThousands()
{
    // A point between groups would pass for the point of the data's own numbers.
    const QString t = Get_localThousand();
    return t.isEmpty() ? QLatin1Char(',') : t == QLatin1String(".") ? QLatin1Char(' ') : t.at(0);
}

QChar NumberMarkDecimal()
{
    const QString d = Get_localDecimal();
    return d.isEmpty() ? QLatin1Char('.') : d.at(0);
}

double CDbl(const QString& text)
{
    const QString t = text.trimmed();
    if (t.compare("True", Qt::CaseInsensitive) == 0)
        return -1;
    if (t.compare("False", Qt::CaseInsensitive) == 0)
        return 0;
    if (t.startsWith("&")) {
        const double v = Val(t);
        if (v == 0 && t.size() < 3)
            Raise(ErrNo::TypeMismatch, "Type mismatch");
        return v;
    }
    // Locale-aware, as the runtime's own conversion is: the machine's decimal separator,
    // group separators ignored.
    const NumberSeparators& seps = MachineSeparators();
    QString s = t;
    if (!seps.thousand.isEmpty() && seps.thousand != seps.decimal)
        s.remove(seps.thousand);
    if (seps.decimal != ".")
        s.replace(seps.decimal, ".");
    double v = 0;
    const qsizetype used = parseDecimal(s, 0, v);
    if (used == 0 || used != s.size())
        Raise(ErrNo::TypeMismatch, "Type mismatch");
    return v;
}

short CInt(const QString& text)
{
    const double v = roundHalfEven(CDbl(text));
    if (v < std::numeric_limits<short>::min() || v > std::numeric_limits<short>::max())
        Raise(ErrNo::Overflow, "Overflow");
    return short(v);
}

int CLng(const QString& text)
{
    const double v = roundHalfEven(CDbl(text));
    if (v < std::numeric_limits<int>::min() || v > std::numeric_limits<int>::max())
        Raise(ErrNo::Overflow, "Overflow");
    return int(v);
}

namespace {

template <typename T>
T checkedWhole(double v)
{
    // Written so that NaN fails too.
    if (!(v >= double(std::numeric_limits<T>::min()) && v <= double(std::numeric_limits<T>::max())))
        Raise(ErrNo::Overflow, "Overflow");
    return T(v);
}

} // namespace

short RoundToShort(double v)
{
    return checkedWhole<short>(std::nearbyint(v));
}

qint32 RoundToLong(double v)
{
    return checkedWhole<qint32>(std::nearbyint(v));
}

qint32 TruncToLong(double v)
{
    return checkedWhole<qint32>(std::trunc(v));
}

float CSng(const QString& text)
{
    const double v = CDbl(text);
    if (std::fabs(v) > std::numeric_limits<float>::max())
        Raise(ErrNo::Overflow, "Overflow");
    return float(v);
}

bool CBool(const QString& text)
{
    return CDbl(text) != 0;
}

QString CStrBool(bool b)
{
    return b ? QStringLiteral("True") : QStringLiteral("False");
}

} // namespace tallix
