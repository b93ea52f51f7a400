#pragma once
// Keypad filters of a reshow chart: "^257:Staff^257:Student^" keeps the keypads whose last
// answer on the question of identity 257 was Staff, and (or, by the reshow's join) Student.

#include <QString>

namespace tallix {

struct RunContext;

// Resets `groupFilter` to every keypad and applies each part of the filter text.
void createFilter(RunContext& ctx, const QString& filterText);
// The answer's number (from 1) a filter part names on its question, or empty when the part
// finds no single question with that label.
void getVoteSlideAndFilter(RunContext& ctx, const QString& part, long slideID, QString& answerNumber);
// One part: the keypads whose entry in the question's last finished line is `answerNumber`.
void makeFilter(RunContext& ctx, const QString& slideIdentity, const QString& answerNumber, bool first);

} // namespace tallix
