#pragma once
// Active keypads and the small records a run and the add-in leave each other in
// presentation tags.

#include <QString>

namespace tallix {

struct RunContext;

// The presentation's `ActiveKeypads` tag as it stands.
QString ActiveKeypadsTag(RunContext& ctx);
void ReadActiveKeypads(RunContext& ctx);
void WriteActiveKeypads(RunContext& ctx, short& allKeypads);
short readCurrentSlide(RunContext& ctx);
void ClearActivity(RunContext& ctx);
// Once per process: the first reason recorded stands.
void RecordVoteEnd(RunContext& ctx, const QString& reason);
QString ReadVoteEnd(RunContext& ctx);
// The part after the last "\" (or "/"), or the whole path.
QString FileTitle(const QString& path);
QString ReadWholeFile(RunContext& ctx, const QString& path);

} // namespace tallix
