#pragma once
// The commands of tallix-deck, callable from tests: each takes the arguments after
// the program name and writes to the given streams; the result is the exit code.

#include <QString>
#include <QStringList>
#include <QTextStream>

namespace tallix::host {
class Application;
}

namespace tallix::deck {

int RunDeckTool(const QStringList& args, QTextStream& out, QTextStream& err);

// Stores a question's settings document in the slide's tag and marks its notes.
void SaveSettingsToSlide(host::Application& app, int slideIndex, const QString& xml);

// The lines of a saved-votes tag: split at CR LF, CR or LF, trailing breaks dropped.
QStringList VoteLines(const QString& tagValue);
// The keypad tokens of one saved-votes line, keypad 1 first.
QStringList VoteTokens(const QString& line);

} // namespace tallix::deck
