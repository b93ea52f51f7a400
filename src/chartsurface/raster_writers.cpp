#include "chartsurface/raster_writers.h"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <vector>

namespace tallix {

namespace {

int WriteToArray(GifFileType* gif, const GifByteType* data, int len)
{
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(data), len);
    return len;
}

int Key15(QRgb c) { return ((qRed(c) >> 3) << 10) | ((qGreen(c) >> 3) << 5) | (qBlue(c) >> 3); }

} // namespace

QByteArray EncodeGif(const QImage& source, QString* error)
{
    const QImage img = source.convertToFormat(QImage::Format_RGB32);
    const int w = img.width(), h = img.height();
    // A chart has few flat colours and soft edges between them: the 256 most used colours
    // (in 15-bit buckets, averaged) keep the flat areas exact, and edges take the nearest.
    std::vector<quint32> count(32768, 0);
    std::vector<std::array<quint64, 3>> sum(32768, {0, 0, 0});
    for (int y = 0; y < h; ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(img.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            const int k = Key15(line[x]);
            ++count[size_t(k)];
            sum[size_t(k)][0] += quint64(qRed(line[x]));
            sum[size_t(k)][1] += quint64(qGreen(line[x]));
            sum[size_t(k)][2] += quint64(qBlue(line[x]));
        }
    }
    std::vector<int> used;
    for (int k = 0; k < 32768; ++k)
        if (count[size_t(k)])
            used.push_back(k);
    std::sort(used.begin(), used.end(), [&](int a, int b) { return count[size_t(a)] > count[size_t(b)]; });
    if (used.size() > 256)
        used.resize(256);
    ColorMapObject* map = GifMakeMapObject(256, nullptr);
    if (!map) {
        if (error)
            *error = QStringLiteral("out of memory");
        return {};
    }
    for (int i = 0; i < 256; ++i) {
        GifColorType c{0, 0, 0};
        if (i < int(used.size())) {
            const auto& s = sum[size_t(used[size_t(i)])];
            const quint64 n = count[size_t(used[size_t(i)])];
            c = {GifByteType(s[0] / n), GifByteType(s[1] / n), GifByteType(s[2] / n)};
        }
        map->Colors[i] = c;
    }
    std::vector<qint16> nearest(32768, -1);
    auto indexFor = [&](QRgb px) {
        const int k = Key15(px);
        qint16& n = nearest[size_t(k)];
        if (n < 0) {
            int best = 0;
            long bestD = LONG_MAX;
            for (int i = 0; i < int(used.size()); ++i) {
                const GifColorType& c = map->Colors[i];
                const long dr = long(c.Red) - qRed(px), dg = long(c.Green) - qGreen(px), db = long(c.Blue) - qBlue(px);
                const long d = 2 * dr * dr + 4 * dg * dg + 3 * db * db;
                if (d < bestD) {
                    bestD = d;
                    best = i;
                }
            }
            n = qint16(best);
        }
        return GifPixelType(n);
    };

    QByteArray out;
    int err = 0;
    GifFileType* gif = EGifOpen(&out, WriteToArray, &err);
    auto fail = [&](int code) {
        if (error)
            *error = QString::fromLatin1(GifErrorString(code));
        GifFreeMapObject(map);
        return QByteArray();
    };
    if (!gif)
        return fail(err);
    EGifSetGifVersion(gif, true);
    bool ok = EGifPutScreenDesc(gif, w, h, 8, 0, map) != GIF_ERROR && EGifPutImageDesc(gif, 0, 0, w, h, false, nullptr) != GIF_ERROR;
    std::vector<GifPixelType> row(size_t(std::max(1, w)));
    for (int y = 0; ok && y < h; ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(img.constScanLine(y));
        for (int x = 0; x < w; ++x)
            row[size_t(x)] = indexFor(line[x]);
        ok = EGifPutLine(gif, row.data(), w) != GIF_ERROR;
    }
    const int lastError = gif->Error;
    if (EGifCloseFile(gif, &err) == GIF_ERROR || !ok)
        return fail(ok ? err : lastError);
    GifFreeMapObject(map);
    return out;
}

QByteArray EncodePcx(const QImage& source)
{
    const QImage img = source.convertToFormat(QImage::Format_RGB888);
    const int w = img.width(), h = img.height();
    const int bytesPerLine = (w + 1) & ~1; // even, as readers expect
    QByteArray out(128, '\0');
    auto put16 = [&](int at, int v) {
        out[at] = char(v & 0xFF);
        out[at + 1] = char((v >> 8) & 0xFF);
    };
    out[0] = char(10); // manufacturer
    out[1] = char(5);  // version 3.0 and later
    out[2] = char(1);  // run-length encoding
    out[3] = char(8);  // bits per pixel per plane
    put16(4, 0);
    put16(6, 0);
    put16(8, w - 1);
    put16(10, h - 1);
    put16(12, 96);
    put16(14, 96);
    out[65] = char(3); // planes: red, green, blue
    put16(66, bytesPerLine);
    put16(68, 1); // colour palette info
    put16(70, w);
    put16(72, h);
    QByteArray plane(bytesPerLine, '\0');
    for (int y = 0; y < h; ++y) {
        const uchar* line = img.constScanLine(y);
        for (int c = 0; c < 3; ++c) {
            for (int x = 0; x < w; ++x)
                plane[x] = char(line[3 * x + c]);
            // Runs never cross a plane line.
            int x = 0;
            while (x < bytesPerLine) {
                const uchar v = uchar(plane[x]);
                int run = 1;
                while (x + run < bytesPerLine && run < 63 && uchar(plane[x + run]) == v)
                    ++run;
                if (run > 1 || (v & 0xC0) == 0xC0)
                    out.append(char(0xC0 | run));
                out.append(char(v));
                x += run;
            }
        }
    }
    return out;
}

} // namespace tallix
