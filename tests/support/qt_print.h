#pragma once
// Readable gtest failure messages for Qt strings.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
inline void PrintTo(const QByteArray& b, std::ostream* os) { *os << '"' << b.toStdString() << '"'; }
inline void PrintTo(const QStringList& l, std::ostream* os)
{
    *os << '[';
    for (const QString& s : l)
        *os << '"' << s.toStdString() << "\",";
    *os << ']';
}
