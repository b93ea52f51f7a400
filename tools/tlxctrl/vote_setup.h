#pragma once
// What the voting module has told the controller about the coming vote, and the
// reading of its command texts.

#include <QString>
#include <QStringList>

namespace tallix {

struct VoteSetup {
    int options = 0;
    int startFrom = 1;
    int quilmarkDisplay = 0;
    QString voteType = "9";
    int limits = 0;          // "Limits=": selections per keypad, rating items, digits
    bool numberedList = false; // "limits=9": a numbered vote of 12 or more options
    bool cppOptions = false;
    bool abstain = false;
    int allocation = 0;
    int points = 0;
    QString answerText;
    QString questionTextShort;
    QString voteText;
    QString preVoteText;
    QString postVotedText;

    // Highest option number: options counted from startFrom.
    int top() const { return options + startFrom - 1; }
};

enum class CommandKind {
    BaseInfo,
    Setting,      // changed the VoteSetup
    StartVote,
    EndVote,
    DeleteTask,
    GetVoteInfo,
    PauseVote,
    ResumeVote,
    ReadActiveKeypads,
    Notice,       // known, nothing for a stand-in to do beyond logging it
    BadValue,     // a known command whose number does not read
    Unknown,
};

// Applies one single-line command to the setup where it is a setting.
CommandKind ApplyCommand(VoteSetup& setup, const QString& command);

// A command text may carry several commands, one per line: "DeleteTask=Vote,Voting..."
// and "EndVote" arrive as one text, in either order.
QStringList SplitCommandText(const QString& text);

// CR and LF shown as \r and \n, so one command is one log line.
QString EscapeForLog(const QString& text);

} // namespace tallix
