#pragma once
// The question schema reader: the settings document into the run state.

#include <QString>

namespace tallix {

struct RunContext;

void SetVarsFromXML(RunContext& ctx);

// A section's listing failed the reader's test and the section is skipped. `vote_info`
// fails only on the store's own "Err - " strings; every other section also fails when
// any value holds "err" in any case.
bool SectionListingFails(const QString& section, const QString& listing);

// The check that compares the document's chart area with the chart object really on
// the slide, and the position matching it uses.
void VisibleChartCheck(RunContext& ctx);
namespace host {
class Shape;
}
// Copies A's position to B where they differ at the host's rounding; with `both`,
// nudges A onto a value that B can hold.
void MakePPTObjectPositionsMatch(RunContext& ctx, host::Shape* a, host::Shape* b, bool both);

} // namespace tallix
