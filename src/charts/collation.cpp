#include "collation.h"

#include "vote/forms.h"
#include "vote/not_built.h"
#include "vote/run_context.h"

namespace tallix {

void CollateVotes(RunContext& ctx, short&, short&, short&)
{
    NotBuiltYet(ctx, "Common_ChartDisplay", "CollateVotes");
}

void CollateSeriesVotes(RunContext& ctx, short&, short&)
{
    NotBuiltYet(ctx, "Common_ChartDisplay", "CollateSeriesVotes");
}

QString GetPercentFormatString(RunContext& ctx)
{
    NotBuiltYet(ctx, "Common_ChartDisplay", "GetPercentFormatString");
    return QStringLiteral("0%");
}

bool FormIsLoaded(RunContext& ctx, const QString& name1, const QString& name2, const QString& name3,
                  const QString& name4)
{
    if (!ctx.forms)
        return false;
    const QStringList loaded = ctx.forms->LoadedForms();
    for (auto it = loaded.crbegin(); it != loaded.crend(); ++it)
        for (const QString* n : {&name1, &name2, &name3, &name4})
            if (!n->isEmpty() && it->compare(*n, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

} // namespace tallix
