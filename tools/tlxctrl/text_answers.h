#pragma once
// What simulated keypads type in a free-text vote: the lines of --texts FILE, or a
// built-in room's answers.

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tallix {

struct TextAnswers {
    QStringList answers;
    int cleaned = 0; // lines that had characters a record cannot carry
    QString error;   // empty when the answers are usable
    bool ok() const { return error.isEmpty(); }
};

// The line as a record can carry it: ";" "," and control characters (CR, LF, tab)
// become blanks, "[" and "]" are dropped, blanks are collapsed and trimmed.
QString CleanTextAnswer(const QString& line);

// One answer a line, UTF-8; a leading byte-order mark and blank lines are skipped.
// Text that is not UTF-8, or no answer at all, is an error naming the file.
TextAnswers ParseTextAnswers(const QByteArray& bytes, const QString& fileName);
TextAnswers LoadTextAnswers(const QString& path);

// Repeats so that counts differ, and letters beyond ASCII so that encoding faults show.
const QStringList& BuiltInTextAnswers();

} // namespace tallix
