#include "text_results.h"

#include "charts/collation.h"
#include "foundation/format_float.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "question/slide_objects.h"
#include "vote/run_context.h"

namespace tallix {

namespace {

const char* kModule = "Tvote";

void log(RunContext& ctx, const QString& line)
{
    WriteDebugLog(ctx, 0, line, kModule, "WriteTextResults");
}

// The table of option n, on the slide or inside the group of the selection being written.
host::Shape* optionTable(RunContext& ctx, host::Slide* slide, int option)
{
    const QString name = QStringLiteral("tlx_object%1").arg(option);
    if (ctx.textResultsIteration < 0)
        return ShapeNamed(slide, name);
    host::Shape* group = ShapeNamed(slide, QStringLiteral("tallix iteration %1").arg(ctx.textResultsIteration + 1));
    if (!group || group->Kind() != host::ShapeKind::Group)
        return nullptr;
    host::GroupShapes* members = group->GroupItems();
    for (int i = 1; i <= members->Count(); ++i)
        if (members->Item(i)->Name() == name)
            return members->Item(i);
    return nullptr;
}

} // namespace

QString TextResultCell(RunContext& ctx, double count, double total)
{
    const double percent = total != 0 ? count / total * 100.0 : 0.0;
    const QString percentText =
        FormatFloat(GetPercentFormatString(ctx), percent, NumberMarkDecimal(), NumberMarkThousands());
    const QString countText = FormatFloat(NumberFormatFor(count), count, NumberMarkDecimal(), NumberMarkThousands());
    switch (ctx.showAsPercentOrNumber) {
    case 1: return countText;
    case 2: return "(" + countText + ") " + percentText;
    case 3: return {};
    default: return percentText;
    }
}

void WriteTextResults(RunContext& ctx, const VbArray<double>& counts, double total)
{
    host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
    for (int i = 1; i <= ctx.optionCount; ++i) {
        const double count = i - 1 <= counts.ubound() ? counts(i - 1) : 0.0;
        host::Shape* shape = optionTable(ctx, slide, i);
        if (!shape || !shape->HasTable()) {
            log(ctx, QStringLiteral("no result table for option %1").arg(i));
            continue;
        }
        host::Table* table = shape->GetTable();
        table->Cell(1, table->ColumnCount())->SetText(TextResultCell(ctx, count, total));
        shape->SetVisible(true);
    }
}

} // namespace tallix
