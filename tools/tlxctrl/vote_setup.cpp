#include "vote_setup.h"

#include <QRegularExpression>

namespace tallix {

namespace {

bool readInt(const QString& text, int& out)
{
    bool ok = false;
    const int v = text.trimmed().toInt(&ok);
    if (ok)
        out = v;
    return ok;
}

} // namespace

CommandKind ApplyCommand(VoteSetup& s, const QString& command)
{
    const QString c = command;
    if (c == "BaseInfo")
        return CommandKind::BaseInfo;
    if (c == "StartVote")
        return CommandKind::StartVote;
    if (c == "EndVote")
        return CommandKind::EndVote;
    if (c.startsWith("DeleteTask="))
        return CommandKind::DeleteTask;
    if (c == "GetVoteInfo")
        return CommandKind::GetVoteInfo;
    if (c == "PAUSEVOTE")
        return CommandKind::PauseVote;
    if (c == "RESUMEVOTE")
        return CommandKind::ResumeVote;
    if (c == "ReadActiveKeypads")
        return CommandKind::ReadActiveKeypads;
    if (c == "SHOWAUDIO" || c == "Kboard" || c == "KBOARD-OFF" || c.startsWith("VOTE-STATUS:")
        || c.startsWith("PCAOPTIONS=") || c.startsWith("NEXTSLIDE,"))
        return CommandKind::Notice;

    const qsizetype eq = c.indexOf('=');
    if (eq < 0)
        return CommandKind::Unknown;
    const QString key = c.left(eq);
    const QString value = c.mid(eq + 1);
    auto number = [&](int& field) { return readInt(value, field) ? CommandKind::Setting : CommandKind::BadValue; };

    if (key == "options")
        return number(s.options);
    if (key == "StartFrom")
        return number(s.startFrom);
    if (key == "QUILMARKdisplay")
        return number(s.quilmarkDisplay);
    if (key == "Limits")
        return number(s.limits);
    // The lower-case spelling is its own command: a numbered vote of many options.
    if (key == "limits") {
        if (number(s.limits) == CommandKind::BadValue)
            return CommandKind::BadValue;
        s.numberedList = true;
        return CommandKind::Setting;
    }
    if (key == "VoteType") {
        if (value.trimmed().isEmpty())
            return CommandKind::BadValue;
        s.voteType = value.trimmed();
        return CommandKind::Setting;
    }
    if (key == "CPPOptions") {
        s.cppOptions = value.trimmed() == "1";
        return CommandKind::Setting;
    }
    if (key == "ABSTAIN") {
        s.abstain = value.trimmed().compare("True", Qt::CaseInsensitive) == 0;
        return CommandKind::Setting;
    }
    if (key == "Allocation")
        return number(s.allocation);
    if (key == "Points")
        return number(s.points);
    if (key == "AnswerText") {
        s.answerText = value;
        return CommandKind::Setting;
    }
    if (key == "QuestionTextShort") {
        s.questionTextShort = value;
        return CommandKind::Setting;
    }
    if (key == "VoteText") {
        s.voteText = value;
        return CommandKind::Setting;
    }
    if (key == "PreVoteText") {
        s.preVoteText = value;
        return CommandKind::Setting;
    }
    if (key == "PostVotedText") {
        s.postVotedText = value;
        return CommandKind::Setting;
    }
    return CommandKind::Unknown;
}

QStringList SplitCommandText(const QString& text)
{
    static const QRegularExpression eol("\r\n|\n|\r");
    QStringList out;
    for (const QString& line : text.split(eol))
        if (!line.isEmpty())
            out.append(line);
    return out;
}

QString EscapeForLog(const QString& text)
{
    QString out = text;
    out.replace('\\', "\\\\").replace('\r', "\\r").replace('\n', "\\n");
    return out;
}

} // namespace tallix
