#pragma once
// --script FILE: what the bases "say" during a vote, at fixed times after StartVote.
//
//   # comment
//   0.5 [12;3],[14;1],\r\n
//   2   !baseerror 1 Base 1 not responding
//   @2 0.5 [12;1],\r\n
//
// Each line is [@N] <seconds-after-StartVote> <text>. A line bound with @N plays only
// after the N-th StartVote this controller receives (from 1, since it started), so a
// series that opens the vote once per selection can be given different votes in each;
// an unbound line plays after every StartVote. The text is sent as one FromTLXCtrl
// event after the escapes \r \n \t \\ are turned into their characters. A text starting
// with "!" is a directive instead (\! sends a literal "!"):
//   !baseerror <base> <message>     a FromTLXCtrlBaseError event
//   !allowedvotes <text>            sets the voting module's txt_allowedVotes item
//   !die                            the controller exits at once, as a crash would

#include <QList>
#include <QString>
#include <QStringList>

namespace tallix {

struct ScriptEntry {
    enum class Kind { Text, BaseError, AllowedVotes, Die };
    qint64 atMs = 0;
    Kind kind = Kind::Text;
    QString text;  // the unescaped text, the error message or the allowed-votes text
    int base = 0;  // for BaseError
    int line = 0;  // line of the script, for the log
    int opening = 0; // 0: after every StartVote; N: only after the N-th
    bool playsAt(int startVote) const { return opening == 0 || opening == startVote; }
};

struct ScriptResult {
    QList<ScriptEntry> entries; // in time order; entries at the same time keep file order
    QStringList errors;         // each "file line n: reason"
    bool ok() const { return errors.isEmpty(); }
};

ScriptResult ParseVoteScript(const QString& text, const QString& fileName = "script");
ScriptResult LoadVoteScript(const QString& path);

// "\r\n" and friends inside a script text; an unknown escape is an error.
bool UnescapeScriptText(const QString& in, QString& out, QString& error);

} // namespace tallix
