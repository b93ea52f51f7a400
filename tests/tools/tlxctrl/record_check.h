#pragma once
// An independent reading of the vote stream, for checking what the stand-in sends.

#include "vote_setup.h"

#include <QList>
#include <QString>

namespace tallix::test {

struct Record {
    int keypad = 0;
    QString value;
    int line = 0; // line of the text it came on
};

// Splits one event text into records; empty error when every record is well formed
// and the text ends as a base ends it.
QList<Record> ParseRecords(const QString& text, QString& error);

// Empty when the value is one the voting module reads as a valid vote of this setup.
QString CheckValue(const VoteSetup& setup, const QString& value);

} // namespace tallix::test
