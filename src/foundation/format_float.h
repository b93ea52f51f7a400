#pragma once
// Formats a number by a picture such as "#,##0.00" or "0.0%": '0' a digit always shown, '#' a
// digit shown when significant, ',' in the whole part groups thousands, the first '.' starts
// the fraction; everything else (such as '%') is literal text around the number. The value is
// not scaled by '%': a percent mark's value is already a percentage.

#include <QChar>
#include <QString>

namespace tallix {

QString FormatFloat(const QString& picture, double value, QChar decimalMark = QLatin1Char('.'),
                    QChar thousandsMark = QLatin1Char(','));

} // namespace tallix
