#pragma once
// A reshow: the stored results of earlier questions drawn again on the reshow slide, one
// chart per reference, each counting only the keypads its filter keeps. Nothing is saved and
// no controller is reached.

#include <QString>

namespace tallix {

struct RunContext;

void DisplayReshow(RunContext& ctx);
// A chart's reference found again in the question list and the slide list: "identity:QID"
// as the deck has it now, or "xxx" when the chart is to be skipped.
QString ResolveReshowReference(const RunContext& ctx, const QString& reference);

} // namespace tallix
