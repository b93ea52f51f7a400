#pragma once
// Vote collation: per-keypad votes into weighted per-option totals.

#include <QString>

namespace tallix {

struct RunContext;

void CollateVotes(RunContext& ctx, short& filterAlreadySet, short& sample, short& keepCounts);
void CollateSeriesVotes(RunContext& ctx, short& filterAlreadySet, short& sample);
// A rating item (from 1) from `votes`: its average mark into `ratingAverages`, and the
// count of each mark into its column of `ratingDistribution`. Only marks the question
// offers count; an item nobody rated averages 0. Without `filterSet` every keypad counts.
float CollateRatingItem(RunContext& ctx, short itemIndex, short filterSet);
QString GetPercentFormatString(RunContext& ctx);
// True when an open form has one of the names (unused names empty).
bool FormIsLoaded(RunContext& ctx, const QString& name1, const QString& name2 = {}, const QString& name3 = {},
                  const QString& name4 = {});

} // namespace tallix
