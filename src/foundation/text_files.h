#pragma once
// Text files the user keeps beside the program (banned words, random answers): UTF-8,
// with or without a byte-order mark; older ones were written in Windows-1252.

#include <QByteArray>
#include <QChar>
#include <QString>

namespace tallix {

// The character of a Windows-1252 code (1 to 255).
QChar Windows1252Char(unsigned char code);
// UTF-8 (a leading byte-order mark skipped) when the bytes are valid UTF-8, else Windows-1252.
QString DecodeUserText(const QByteArray& bytes);

} // namespace tallix
