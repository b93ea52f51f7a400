#pragma once
// The results of free-entry votes: typed numbers counted into the answer ranges or shown
// in a table, typed text stored in tags and shown as a list or a word cloud.

#include <QList>
#include <QString>
#include <QStringList>

namespace tallix {

struct RunContext;

// Each keypad's "|" separated scores added per option into `aScores`.
void ScoreSum(RunContext& ctx);
// Typed numbers become choices of the answer ranges ("<10", "10-20", ">20", "=5", "7").
void Fraction_ResultsConversion(RunContext& ctx);
// Typed numbers in order in the table `tlx_answers`, one row per value from its template row.
void Numeric_ResultsDisplay(RunContext& ctx);
// Typed text: stored in tags, listed, or drawn as a word cloud.
void JolttextVote_ResultsDisplay(RunContext& ctx);

// One answer range: the number v of a vote falls in it when lower <= v <= upper.
struct AnswerRange {
    double lower = 0;
    double upper = 0;
};
// False when the text names no range.
bool ReadAnswerRange(const QString& text, AnswerRange& range);

// Rows ordered by the text of their key cell, ascending; cells keyColumn..lastColumn move.
void QuickSortRows(QList<QStringList>& table, int keyColumn, int lastColumn, int first, int last);

// The distinct answers in the order met, counted without regard to case.
struct AnswerCount {
    QString answer;
    int count = 0;
};
QList<AnswerCount> CountDistinctAnswers(const QStringList& answers);

} // namespace tallix
