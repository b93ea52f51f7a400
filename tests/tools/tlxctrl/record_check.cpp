#include "record_check.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>

namespace tallix::test {

QList<Record> ParseRecords(const QString& text, QString& error)
{
    QList<Record> out;
    if (!text.endsWith("\r\n")) {
        error = "text does not end with CR LF";
        return out;
    }
    const QStringList lines = text.left(text.size() - 2).split("\r\n");
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines[i];
        if (!line.startsWith('[') || !line.endsWith("],")) {
            error = "line not in the bracketed form: " + line;
            return out;
        }
        const QStringList pieces = line.mid(0, line.size() - 2).split("],");
        for (QString piece : pieces) {
            if (!piece.startsWith('[')) {
                error = "record without [: " + piece;
                return out;
            }
            piece.remove(0, 1);
            const QStringList fields = piece.split(';');
            bool ok = false;
            const int k = fields[0].toInt(&ok);
            if (fields.size() != 2 || !ok || k < 1 || fields[1].isEmpty() || fields[1].contains('[')
                || fields[1].contains(']') || fields[1].contains(',')) {
                error = "malformed record: " + piece;
                return out;
            }
            out.append({k, fields[1], i});
        }
    }
    return out;
}

namespace {

bool intIn(const QString& s, int lo, int hi, int* out = nullptr)
{
    bool ok = false;
    const int v = s.toInt(&ok);
    if (out)
        *out = v;
    return ok && v >= lo && v <= hi && QString::number(v) == s;
}

} // namespace

QString CheckValue(const VoteSetup& s, const QString& v)
{
    const QString& t = s.voteType;
    const int lo = s.startFrom;
    const int hi = s.top();
    const int most = std::max(1, s.limits);

    if (t == "7")
        return v.trimmed().isEmpty() || v.contains(';') ? "bad text vote" : "";
    if (v == "X")
        return s.abstain ? "" : "abstain without ABSTAIN=True";

    if (t == "3") {
        const QStringList f = v.split('|');
        if (f.size() != s.options)
            return "flag row of the wrong length";
        int ones = 0;
        for (const QString& x : f) {
            if (x != "0" && x != "1")
                return "flag neither 0 nor 1";
            ones += x == "1";
        }
        return ones >= 1 && ones <= most ? "" : "wrong number of selections";
    }
    if (t == "5" || t == "1" || t == "6") {
        QStringList f = v.split('|');
        if (t == "6" && f.size() == 2 && f[1].isEmpty())
            f.removeLast();
        if (t == "6" && f.size() != most)
            return "rating with the wrong number of items";
        if (f.size() > most)
            return "more selections than Limits";
        QSet<QString> seen;
        for (const QString& x : f) {
            if (!intIn(x, lo, hi))
                return "selection out of range: " + x;
            if (t != "6" && seen.contains(x))
                return "selection repeated";
            seen.insert(x);
        }
        return "";
    }
    if (t == "12" || (t == "99" && !s.cppOptions && s.limits > 1)) {
        QStringList f;
        if (v.endsWith('*')) {
            f = v.left(v.size() - 1).split('*');
        } else {
            for (QChar c : v)
                f.append(QString(c));
        }
        if (f.isEmpty() || f.size() > most)
            return "wrong number of selections";
        if (QSet<QString>(f.begin(), f.end()).size() != f.size())
            return "selection repeated";
        for (const QString& x : f)
            if (!intIn(x, lo, hi))
                return "selection out of range: " + x;
        return "";
    }
    if (t == "11" || (t == "99" && s.cppOptions && !s.numberedList)) {
        // Typed on the keypad: up to Limits digits whatever the options, two decimals in 99.
        const QString whole = QString("-?(0|[1-9][0-9]{0,%1})").arg(std::max(1, s.limits) - 1);
        const QRegularExpression typed("^" + whole + (t == "99" ? "\\.[0-9]{2}$" : "$"));
        return typed.match(v).hasMatch() ? "" : "not a typed number: " + v;
    }
    return intIn(v, lo, hi) ? "" : "value out of range: " + v;
}

} // namespace tallix::test
