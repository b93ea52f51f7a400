#pragma once
// The title of a reshown chart: its question and the answers its filter keeps.

#include <QString>

namespace tallix {

// "Title: A OR B" for the filter "^257:A^257:B^" joined by or; the base title alone when
// the filter names nothing.
QString CreateChartTitle(const QString& baseTitle, const QString& filterText, bool orJoin);

} // namespace tallix
