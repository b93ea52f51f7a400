#pragma once
// Active keypads and the small records a run and the add-in leave each other in
// presentation tags.

#include <QString>
#include <QStringList>

#include <vector>

namespace tallix {

struct RunContext;

// The presentation's `ActiveKeypads` tag as it stands.
QString ActiveKeypadsTag(RunContext& ctx);
void ReadActiveKeypads(RunContext& ctx);
// Which keypads, up to `highest`, the active list names: an entry names a keypad when it
// reads as its number exactly. Indexed by keypad number; empty when no entry names one.
std::vector<bool> ActiveKeypadFlags(const QStringList& activeKeypads, qint32 highest);
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
