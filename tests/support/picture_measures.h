#pragma once
// Measures of a chart picture that the pixel-level tests share.

#include <QImage>
#include <QRect>

#include <algorithm>
#include <vector>

namespace tallix::testing {

// Share of pixels of a rendered picture that are clearly coloured (not white, grey or black).
inline double ColouredShare(const QImage& img)
{
    qint64 coloured = 0;
    const QImage rgb = img.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < rgb.height(); ++y)
        for (int x = 0; x < rgb.width(); ++x) {
            const QRgb c = rgb.pixel(x, y);
            const int hi = std::max({qRed(c), qGreen(c), qBlue(c)}), lo = std::min({qRed(c), qGreen(c), qBlue(c)});
            coloured += hi - lo > 60;
        }
    return double(coloured) / (double(rgb.width()) * rgb.height());
}

// The chart's solid parts, slices and bars: a pixel counts when nearly all of the 9 x 9
// square round it is drawn, which the thin strokes of text and axes never fill.
inline QRect SolidBounds(const QImage& img)
{
    const int w = img.width(), h = img.height();
    // Drawn pixels summed over every rectangle from the corner, to count any square at once.
    std::vector<int> sum(size_t(w + 1) * size_t(h + 1), 0);
    auto at = [&](int x, int y) -> int& { return sum[size_t(y) * size_t(w + 1) + size_t(x)]; };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const QRgb p = img.pixel(x, y);
            const int drawn = !(qRed(p) >= 222 && qGreen(p) >= 222 && qBlue(p) >= 222);
            at(x + 1, y + 1) = drawn + at(x, y + 1) + at(x + 1, y) - at(x, y);
        }
    constexpr int kHalf = 4, kSide = 2 * kHalf + 1;
    QRect r;
    for (int y = kHalf; y < h - kHalf; ++y)
        for (int x = kHalf; x < w - kHalf; ++x) {
            const int n = at(x + kHalf + 1, y + kHalf + 1) - at(x - kHalf, y + kHalf + 1) - at(x + kHalf + 1, y - kHalf) +
                          at(x - kHalf, y - kHalf);
            if (n >= kSide * kSide - 4)
                r |= QRect(x, y, 1, 1);
        }
    return r;
}

} // namespace tallix::testing
