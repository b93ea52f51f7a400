#include "text_answers.h"

#include <QFile>
#include <QStringDecoder>

namespace tallix {

QString CleanTextAnswer(const QString& line)
{
    QString out;
    out.reserve(line.size());
    for (const QChar c : line) {
        if (c == u'[' || c == u']')
            continue;
        out += c == u';' || c == u',' || c.category() == QChar::Other_Control ? QChar(u' ') : c;
    }
    return out.simplified();
}

TextAnswers ParseTextAnswers(const QByteArray& bytes, const QString& fileName)
{
    TextAnswers out;
    const QList<QByteArray> lines = bytes.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QByteArray raw = lines[i];
        if (i == 0 && raw.startsWith("\xEF\xBB\xBF"))
            raw.remove(0, 3);
        if (raw.endsWith('\r'))
            raw.chop(1);
        // Line by line, so that a bad byte is reported where it is; stateless, so that a
        // character cut off at the line's end is one.
        QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
        const QString line = utf8(raw);
        if (utf8.hasError()) {
            out.error = QString("%1 line %2: not UTF-8").arg(fileName).arg(i + 1);
            return out;
        }
        if (line.trimmed().isEmpty())
            continue;
        const QString answer = CleanTextAnswer(line);
        if (answer != line.simplified())
            ++out.cleaned;
        if (!answer.isEmpty())
            out.answers.append(answer);
    }
    if (out.answers.isEmpty())
        out.error = QString("%1 holds no answers").arg(fileName);
    return out;
}

TextAnswers LoadTextAnswers(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        TextAnswers out;
        out.error = QString("cannot read %1: %2").arg(path, f.errorString());
        return out;
    }
    return ParseTextAnswers(f.readAll(), path);
}

const QStringList& BuiltInTextAnswers()
{
    static const QStringList answers = {
        "Coffee", "Coffee", "Coffee", "Coffee", "Tea", "Tea", "Tea", "Café", "Café", "Water",
        "Straße", "Straße", "Łódź", "日本", "日本", "naïve", "Good idea", "Good idea", "Not sure", "Friday",
    };
    return answers;
}

} // namespace tallix
