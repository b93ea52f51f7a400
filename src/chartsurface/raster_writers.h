#pragma once
// Encoders for the picture formats Qt does not write: GIF (256 colours, through giflib) and
// PCX (24-bit, run-length encoded). Both return the whole file, or an empty array with
// *error set.

#include <QByteArray>
#include <QImage>
#include <QString>

namespace tallix {

QByteArray EncodeGif(const QImage& image, QString* error = nullptr);
QByteArray EncodePcx(const QImage& image);

} // namespace tallix
