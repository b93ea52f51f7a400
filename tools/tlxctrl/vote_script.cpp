#include "vote_script.h"

#include <QFile>

#include <algorithm>
#include <cmath>

namespace tallix {

bool UnescapeScriptText(const QString& in, QString& out, QString& error)
{
    out.clear();
    out.reserve(in.size());
    for (qsizetype i = 0; i < in.size(); ++i) {
        const QChar c = in[i];
        if (c != '\\') {
            out += c;
            continue;
        }
        if (i + 1 >= in.size()) {
            error = "the text ends in a lone \\";
            return false;
        }
        const QChar e = in[++i];
        switch (e.unicode()) {
        case 'r': out += '\r'; break;
        case 'n': out += '\n'; break;
        case 't': out += '\t'; break;
        case '\\': out += '\\'; break;
        case '!': out += '!'; break;
        default:
            error = QString("unknown escape \\%1 (use \\r, \\n, \\t, \\\\ or \\!)").arg(e);
            return false;
        }
    }
    return true;
}

namespace {
// Hours of script are plenty; the bound keeps the millisecond count far from overflow.
constexpr double kMaxSeconds = 24 * 3600;
} // namespace

ScriptResult ParseVoteScript(const QString& text, const QString& fileName)
{
    ScriptResult r;
    auto fail = [&](int ln, const QString& what) { r.errors.append(QString("%1 line %2: %3").arg(fileName).arg(ln).arg(what)); };

    const QStringList lines = QString(text).replace("\r\n", "\n").split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const int ln = i + 1;
        const QString raw = lines[i];
        const QString trimmed = raw.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith('#'))
            continue;
        // Blanks inside and at the end of the text are part of what the bases send;
        // only those between the time and the text are not.
        qsizetype pos = 0;
        auto nextWord = [&] {
            while (pos < raw.size() && raw[pos].isSpace())
                ++pos;
            const qsizetype begin = pos;
            while (pos < raw.size() && !raw[pos].isSpace())
                ++pos;
            return raw.mid(begin, pos - begin);
        };
        QString timeText = nextWord();
        int opening = 0;
        if (timeText.startsWith('@')) {
            bool openingOk = false;
            opening = timeText.mid(1).toInt(&openingOk);
            if (!openingOk || opening < 1) {
                fail(ln, QString("\"%1\" is not a StartVote number (use @1, @2, ...)").arg(timeText));
                continue;
            }
            timeText = nextWord();
            if (timeText.isEmpty()) {
                fail(ln, QString("no time after @%1").arg(opening));
                continue;
            }
        }
        bool ok = false;
        const double seconds = timeText.toDouble(&ok);
        if (!ok || !std::isfinite(seconds) || seconds < 0 || seconds > kMaxSeconds) {
            fail(ln, QString("\"%1\" is not a time in seconds after StartVote").arg(timeText));
            continue;
        }
        qsizetype body0 = pos;
        while (body0 < raw.size() && raw[body0].isSpace())
            ++body0;
        if (body0 >= raw.size()) {
            fail(ln, "no text after the time");
            continue;
        }
        const QString body = raw.mid(body0);
        ScriptEntry e;
        e.atMs = std::llround(seconds * 1000.0);
        e.line = ln;
        e.opening = opening;
        if (body.startsWith('!')) {
            const QString directive = body.mid(1).section(' ', 0, 0).toLower();
            const QString rest = body.mid(1).section(' ', 1);
            if (directive == "baseerror") {
                bool baseOk = false;
                e.base = rest.section(' ', 0, 0).toInt(&baseOk);
                if (!baseOk || e.base < 0) {
                    fail(ln, "!baseerror needs a base index and a message");
                    continue;
                }
                e.kind = ScriptEntry::Kind::BaseError;
                e.text = rest.section(' ', 1);
            } else if (directive == "allowedvotes") {
                e.kind = ScriptEntry::Kind::AllowedVotes;
                e.text = rest;
            } else if (directive == "die") {
                e.kind = ScriptEntry::Kind::Die;
            } else {
                fail(ln, QString("unknown directive !%1 (use \\! to send a text that starts with !)").arg(directive));
                continue;
            }
        } else {
            QString error;
            if (!UnescapeScriptText(body, e.text, error)) {
                fail(ln, error);
                continue;
            }
            if (e.text.isEmpty()) {
                fail(ln, "no text after the time");
                continue;
            }
        }
        r.entries.append(e);
    }
    std::stable_sort(r.entries.begin(), r.entries.end(),
                     [](const ScriptEntry& a, const ScriptEntry& b) { return a.atMs < b.atMs; });
    return r;
}

ScriptResult LoadVoteScript(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        ScriptResult r;
        r.errors.append(QString("%1: cannot be read: %2").arg(path, f.errorString()));
        return r;
    }
    return ParseVoteScript(QString::fromUtf8(f.readAll()), path);
}

} // namespace tallix
