#include "foundation/numbers.h"
#include "host/deck_host.h"
#include "support/test_context.h"
#include "vote/text_results.h"

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::TestRun;

namespace {

// Four votes of six for an option, as a cell shows them.
TEST(TextResultCell, WritesTheCountOrThePercentAsTheQuestionAsks)
{
    TestRun run;
    struct Case {
        short showAs;
        double places;
        const char* decimal;
        const char* cell;
    };
    const Case cases[] = {
        {0, 1, ".", "66.7%"}, {1, 1, ".", "4"},           {2, 1, ".", "(4) 66.7%"},
        {3, 1, ".", ""},      {0, 0, ".", "67%"},         {2, 1, ",", "(4) 66,7%"},
        {0, 2, ".", "66.67%"}, {2, 0, ",", "(4) 67%"},     {0, 2, ",", "66,67%"},
    };
    for (const Case& c : cases) {
        const QString decimal = QString::fromLatin1(c.decimal);
        ScopedSeparators separators(decimal, decimal == "," ? "." : ",");
        run.ctx.showAsPercentOrNumber = c.showAs;
        run.ctx.PercentDP = c.places;
        EXPECT_EQ(TextResultCell(run.ctx, 4, 6), c.cell) << c.showAs << " " << c.places << " " << c.decimal;
    }
    run.ctx.showAsPercentOrNumber = 2;
    run.ctx.PercentDP = 1;
    EXPECT_EQ(TextResultCell(run.ctx, 0, 0), "(0) 0.0%") << "no votes at all still shows its zero";
}

TEST(WriteTextResults, AnOptionWithoutItsTableIsSkipped)
{
    TestRun run;
    host::MemoryHost deck(2);
    run.ctx.oPPT = &deck;
    run.ctx.oPres = deck.ActivePresentation();
    run.ctx.currentSlide = 2;
    run.ctx.optionCount = 2;
    host::Shapes* shapes = run.ctx.oPres->GetSlides()->Item(2)->GetShapes();
    shapes->AddTextbox(0, 0, 50, 20)->SetName("tlx_object1");   // a shape, but no table
    WriteTextResults(run.ctx, VbArray<double>(1, 1.0), 2);
    run.ctx.textResultsIteration = 0;   // a selection whose group is not on the slide
    WriteTextResults(run.ctx, VbArray<double>(1, 1.0), 2);
    EXPECT_TRUE(run.errLog().isEmpty());
}

} // namespace
