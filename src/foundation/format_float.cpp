#include "foundation/format_float.h"

#include <QRegularExpression>

#include <cmath>

namespace tallix {

QString FormatFloat(const QString& picture, double value, QChar decimalMark, QChar thousandsMark)
{
    if (!std::isfinite(value))
        return QString::number(value);
    auto isNumChar = [](QChar c) { return c == u'#' || c == u'0' || c == u',' || c == u'.'; };
    int start = -1;
    for (int i = 0; i < picture.size(); ++i)
        if (picture[i] == u'#' || picture[i] == u'0') {
            start = i;
            break;
        }
    if (start < 0) // no digits in the picture: plain number
        return picture + QString::number(value, 'g', 15);
    // A '.' or ',' directly before the first digit belongs to the number (".00").
    while (start > 0 && (picture[start - 1] == u'.' || picture[start - 1] == u','))
        --start;
    int end = start;
    while (end < picture.size() && isNumChar(picture[end]))
        ++end;
    const QString prefix = picture.left(start);
    const QString suffix = picture.mid(end);
    const QString num = picture.mid(start, end - start);

    const int dot = num.indexOf(u'.');
    const QString whole = dot < 0 ? num : num.left(dot);
    const QString frac = dot < 0 ? QString() : num.mid(dot + 1);
    const bool group = whole.contains(u',');
    const int minWhole = int(whole.count(u'0'));
    const int minFrac = int(frac.count(u'0'));
    const int maxFrac = int(frac.count(u'0') + frac.count(u'#'));

    const bool negative = value < 0;
    QString digits = QString::number(std::fabs(value), 'f', maxFrac);
    QString intPart = digits, fracPart;
    if (const int p = int(digits.indexOf(u'.')); p >= 0) {
        intPart = digits.left(p);
        fracPart = digits.mid(p + 1);
    }
    while (fracPart.size() > minFrac && fracPart.endsWith(u'0'))
        fracPart.chop(1);
    if (intPart == QLatin1String("0") && minWhole == 0)
        intPart.clear();
    while (intPart.size() < minWhole)
        intPart.prepend(u'0');
    if (group && intPart.size() > 3) {
        QString grouped;
        const int n = int(intPart.size());
        for (int i = 0; i < n; ++i) {
            if (i > 0 && (n - i) % 3 == 0)
                grouped += thousandsMark;
            grouped += intPart[i];
        }
        intPart = grouped;
    }
    QString out = intPart;
    if (!fracPart.isEmpty())
        out += decimalMark + fracPart;
    if (out.isEmpty())
        out = QStringLiteral("0");
    const bool allZero = !out.contains(QRegularExpression(QStringLiteral("[1-9]")));
    return (negative && !allZero ? QStringLiteral("-") : QString()) + prefix + out + suffix;
}

} // namespace tallix
