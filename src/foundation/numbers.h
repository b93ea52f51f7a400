#pragma once
// Numbers in text read alike on every machine: documents, tags and controller text use
// "." as the decimal point, whatever the user's regional setting.

#include <QString>
#include <QStringView>

#include <optional>

namespace tallix {

// The machine's separators, taken from the process locale on first use. Tests
// replace them to run as a comma-decimal or point-decimal machine.
struct NumberSeparators {
    QString decimal;
    QString thousand;
};
const NumberSeparators& MachineSeparators();
void SetMachineSeparatorsForTesting(const NumberSeparators* override);

class ScopedSeparators {
public:
    ScopedSeparators(QString decimal, QString thousand);
    ~ScopedSeparators();
    ScopedSeparators(const ScopedSeparators&) = delete;
    ScopedSeparators& operator=(const ScopedSeparators&) = delete;

private:
    NumberSeparators seps_;
};

double tlxVal(QStringView text);
inline double tlxVal(const QString& text) { return tlxVal(QStringView(text)); }
// Keypad numbers and votes are the same few thousand short texts over and over; a burst
// of votes would otherwise allocate one string per record. NumberText(n) is the decimal
// text of n >= 0, shared between calls; SharedText is `text` as a string, shared with
// NumberText's when it is written exactly so.
QString NumberText(qint32 n);
QString SharedText(QStringView text);
// The value of a text written as NumberText writes it: digits only, no leading zero.
std::optional<qint32> PlainNumber(QStringView text);

QString Get_localDecimal();
QString Get_localThousand();
QString NumberFormatFor(double value);
// The marks that show a number's pattern on this machine: its decimal mark, and its group
// mark with a point shown as a blank.
QChar NumberMarkDecimal();
QChar NumberMarkThousands();

// The runtime's Val: the longest leading number, "." as decimal point, blanks, tabs
// and line feeds ignored, &H and &O prefixes for hexadecimal and octal.
double Val(const QString& text);

// The runtime's conversions of text to its number types: rounding half to even,
// failing with "Type mismatch" or "Overflow" as it does.
short CInt(const QString& text);
int CLng(const QString& text);
float CSng(const QString& text);
double CDbl(const QString& text);
bool CBool(const QString& text);
// A number read from text taken into a whole-number variable: rounded half to even,
// or cut toward zero as a cast cuts; "Overflow" beyond the type, as the runtime does,
// rather than a value the machine makes up.
short RoundToShort(double v);
qint32 RoundToLong(double v);
qint32 TruncToLong(double v);
// CStr of a Boolean: "True" or "False".
QString CStrBool(bool b);

} // namespace tallix
