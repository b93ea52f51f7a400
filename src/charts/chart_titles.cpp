#include "chart_titles.h"

#include <QStringList>

namespace tallix {

QString CreateChartTitle(const QString& baseTitle, const QString& filterText, bool orJoin)
{
    if (filterText.size() < 2)
        return baseTitle;
    const QString joiner = orJoin ? QStringLiteral(" OR ") : QStringLiteral(" AND ");
    QStringList values;
    for (const QString& part : filterText.split(QLatin1Char('^'))) {
        if (part.isEmpty())
            continue;
        const QStringList pieces = part.split(QLatin1Char(':'));
        if (pieces.size() >= 2)
            values << pieces.at(1).trimmed();
    }
    const QString named = values.join(joiner);
    return named.isEmpty() ? baseTitle : baseTitle + QStringLiteral(": ") + named;
}

} // namespace tallix
