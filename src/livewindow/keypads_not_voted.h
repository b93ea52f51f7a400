#pragma once
// Who has not voted yet: the counts after each burst of votes, the auto end by share,
// and the text of the keypads-not-voted list.

#include <QString>

namespace tallix {

struct RunContext;

void RefreshKeypadsNotVoted(RunContext& ctx, bool force);

// State the list window keeps between redraws.
struct NotVotedListState {
    qint32 listStart = 0;      // where the next page of a scrolling list starts
    double lastRedraw = -1;    // clock value of the last redraw; -1 = never
    bool autoSize = true;      // the label fits its text on this page
};

// The list's text for the next redraw, after waiting out the one-second pace. Empty
// with `ended` set when the share of voters has been reached and the vote closed.
QString showNotVoted(RunContext& ctx, NotVotedListState& state, bool& ended);

} // namespace tallix
