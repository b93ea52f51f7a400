#pragma once
// The question schema reader: the settings document into the run state.

#include <QString>

#include <functional>

namespace tallix {

struct RunContext;

void SetVarsFromXML(RunContext& ctx);
// The second reader: a reshow chart's question, from the slide of that identity. It keeps a
// count-down's time, the votes-cast window, the areas and a live vote's rules its own.
void LoadChartXML(RunContext& ctx, long slideID);
// One section of the loaded document, key by key; a section failing the reader's test is
// skipped whole.
void ReadSettingsSection(RunContext& ctx, const QString& section,
                         const std::function<void(const QString& key, const QString& value)>& handle);

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
