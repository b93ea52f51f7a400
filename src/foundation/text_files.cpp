#include "text_files.h"

#include <QStringDecoder>

namespace tallix {

QChar Windows1252Char(unsigned char code)
{
    // Codes 128 to 159 are where Windows-1252 and Latin-1 part ways.
    static const char16_t high[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                      0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    return QChar(code >= 128 && code < 160 ? high[code - 128] : char16_t(code));
}

QString DecodeUserText(const QByteArray& bytes)
{
    QByteArray body = bytes;
    if (body.startsWith("\xEF\xBB\xBF"))
        body.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(body);
    if (!utf8.hasError())
        return text;
    text.clear();
    text.reserve(body.size());
    for (char c : body)
        text += Windows1252Char(static_cast<unsigned char>(c));
    return text;
}

} // namespace tallix
