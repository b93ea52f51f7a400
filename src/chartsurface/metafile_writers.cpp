// EMF, WMF and EPS from a recorded chart. The metafiles carry real drawing records
// (polygons, polylines, text), so a slide that holds one scales it without blur.

#include "chartsurface/vector_picture.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tallix {

namespace {

class LeBuffer {
public:
    void u8(quint8 v) { b_.append(char(v)); }
    void u16(quint16 v)
    {
        char d[2];
        qToLittleEndian(v, d);
        b_.append(d, 2);
    }
    void i16(qint16 v) { u16(quint16(v)); }
    void u32(quint32 v)
    {
        char d[4];
        qToLittleEndian(v, d);
        b_.append(d, 4);
    }
    void i32(qint32 v) { u32(quint32(v)); }
    void f32(float v)
    {
        quint32 bits;
        std::memcpy(&bits, &v, 4);
        u32(bits);
    }
    void bytes(const QByteArray& a) { b_.append(a); }
    void pad2()
    {
        if (b_.size() % 2)
            b_.append('\0');
    }
    void pad4()
    {
        while (b_.size() % 4)
            b_.append('\0');
    }
    qsizetype size() const { return b_.size(); }
    QByteArray& data() { return b_; }
    void patch32(qsizetype at, quint32 v) { qToLittleEndian(v, b_.data() + at); }
    void patch16(qsizetype at, quint16 v) { qToLittleEndian(v, b_.data() + at); }

private:
    QByteArray b_;
};

quint32 ColorRef(const QColor& c) { return quint32(c.red()) | (quint32(c.green()) << 8) | (quint32(c.blue()) << 16); }

int Weight(const QFont& f) { return f.bold() ? 700 : 400; }

// Text at its reference point: text-start on the baseline, as the recording holds it.
int Escapement(double angle) { return int(std::lround(-angle * 10)); }

// ---- EMF ----------------------------------------------------------------------------------

enum : quint32 {
    EMR_HEADER = 1, EMR_POLYLINE = 4, EMR_POLYPOLYGON = 8, EMR_SETWINDOWEXTEX = 9, EMR_SETWINDOWORGEX = 10,
    EMR_SETVIEWPORTEXTEX = 11, EMR_SETVIEWPORTORGEX = 12, EMR_EOF = 14, EMR_SETMAPMODE = 17, EMR_SETBKMODE = 18,
    EMR_SETPOLYFILLMODE = 19, EMR_SETTEXTALIGN = 22, EMR_SETTEXTCOLOR = 24, EMR_SELECTOBJECT = 37,
    EMR_CREATEPEN = 38, EMR_CREATEBRUSHINDIRECT = 39, EMR_DELETEOBJECT = 40, EMR_STRETCHDIBITS = 81,
    EMR_EXTCREATEFONTINDIRECTW = 82, EMR_EXTTEXTOUTW = 84,
};
constexpr quint32 kNullBrush = 0x80000005, kNullPen = 0x80000008;
constexpr int kEmfScale = 8; // logical units per pixel, for sub-pixel precision

class EmfWriter {
public:
    explicit EmfWriter(QSize size) : size_(size) {}

    QByteArray write(const VectorPicture& pic)
    {
        header();
        rec(EMR_SETMAPMODE, {8}); // anisotropic: logical units scaled to the pixel frame
        rec(EMR_SETWINDOWORGEX, {0, 0});
        rec(EMR_SETWINDOWEXTEX, {quint32(size_.width() * kEmfScale), quint32(size_.height() * kEmfScale)});
        rec(EMR_SETVIEWPORTORGEX, {0, 0});
        rec(EMR_SETVIEWPORTEXTEX, {quint32(size_.width()), quint32(size_.height())});
        rec(EMR_SETBKMODE, {1});
        rec(EMR_SETTEXTALIGN, {24}); // baseline, left
        for (const auto& it : pic.items) {
            switch (it.kind) {
            case VecPrimitive::Fill: fill(it); break;
            case VecPrimitive::Stroke: stroke(it); break;
            case VecPrimitive::Text: text(it); break;
            case VecPrimitive::Image: image(it); break;
            }
        }
        rec(EMR_SELECTOBJECT, {kNullPen});
        rec(EMR_SELECTOBJECT, {kNullBrush});
        if (pen_)
            rec(EMR_DELETEOBJECT, {1});
        if (brush_)
            rec(EMR_DELETEOBJECT, {2});
        // EOF: no palette.
        b_.u32(EMR_EOF);
        b_.u32(20);
        b_.u32(0);
        b_.u32(16);
        b_.u32(20);
        ++records_;
        b_.patch32(48, quint32(b_.size()));
        b_.patch32(52, records_);
        return b_.data();
    }

private:
    void header()
    {
        const QString desc = QStringLiteral("tallix chart surface") + QChar(0) + QStringLiteral("chart") + QChar(0) + QChar(0);
        const int descBytes = int(desc.size()) * 2;
        const quint32 size = 108 + ((descBytes + 3) & ~3);
        b_.u32(EMR_HEADER);
        b_.u32(size);
        b_.i32(0); // bounds, pixels, inclusive
        b_.i32(0);
        b_.i32(size_.width() - 1);
        b_.i32(size_.height() - 1);
        const int wmm100 = int(std::lround(size_.width() * 2540.0 / 96)), hmm100 = int(std::lround(size_.height() * 2540.0 / 96));
        b_.i32(0); // frame, 0.01 mm
        b_.i32(0);
        b_.i32(wmm100 - 1);
        b_.i32(hmm100 - 1);
        b_.u32(0x464D4520); // " EMF"
        b_.u32(0x10000);
        b_.u32(0); // bytes, patched
        b_.u32(0); // records, patched
        b_.u16(4); // handles: 0 reserved, pen, brush, font
        b_.u16(0);
        b_.u32(quint32(desc.size()));
        b_.u32(108);
        b_.u32(0); // palette entries
        // Reference device: a full-HD screen at 96 pixels to the inch, the resolution the
        // frame above is reckoned in, so a reader maps pixels to millimetres alike on both axes.
        constexpr int kDevW = 1920, kDevH = 1080;
        b_.i32(kDevW);
        b_.i32(kDevH);
        b_.i32(int(std::lround(kDevW * 25.4 / 96)));
        b_.i32(int(std::lround(kDevH * 25.4 / 96)));
        b_.u32(0); // no pixel format
        b_.u32(0);
        b_.u32(0); // not OpenGL
        b_.i32(int(std::lround(kDevW * 25400.0 / 96)));
        b_.i32(int(std::lround(kDevH * 25400.0 / 96)));
        for (QChar c : desc)
            b_.u16(c.unicode());
        b_.pad4();
        records_ = 1;
    }

    void rec(quint32 type, std::initializer_list<quint32> params)
    {
        b_.u32(type);
        b_.u32(quint32(8 + 4 * params.size()));
        for (quint32 v : params)
            b_.u32(v);
        ++records_;
    }

    qint32 L(double px) const { return qint32(std::lround(px * kEmfScale)); }

    void bounds(const std::vector<QPolygonF>& polys)
    {
        QRectF r;
        for (const auto& p : polys)
            r = r.united(p.boundingRect());
        b_.i32(int(std::floor(r.left())));
        b_.i32(int(std::floor(r.top())));
        b_.i32(int(std::ceil(r.right())));
        b_.i32(int(std::ceil(r.bottom())));
    }

    void selectPen(const QColor* c, double width)
    {
        const quint64 key = c ? (quint64(ColorRef(*c)) << 16 | quint64(std::lround(width * 4))) : ~quint64(0);
        if (key == penKey_)
            return;
        penKey_ = key;
        if (!c) {
            rec(EMR_SELECTOBJECT, {kNullPen});
            return;
        }
        rec(EMR_SELECTOBJECT, {kNullPen});
        if (pen_)
            rec(EMR_DELETEOBJECT, {1});
        const quint32 w = width <= 1.01 ? 0 : quint32(L(width));
        rec(EMR_CREATEPEN, {1, 0, w, 0, ColorRef(*c)});
        rec(EMR_SELECTOBJECT, {1});
        pen_ = true;
    }

    void selectBrush(const QColor* c)
    {
        const quint64 key = c ? quint64(ColorRef(*c)) : ~quint64(0);
        if (key == brushKey_)
            return;
        brushKey_ = key;
        if (!c) {
            rec(EMR_SELECTOBJECT, {kNullBrush});
            return;
        }
        rec(EMR_SELECTOBJECT, {kNullBrush});
        if (brush_)
            rec(EMR_DELETEOBJECT, {2});
        rec(EMR_CREATEBRUSHINDIRECT, {2, 0, ColorRef(*c), 0});
        rec(EMR_SELECTOBJECT, {2});
        brush_ = true;
    }

    void fill(const VecPrimitive& it)
    {
        if (it.winding != winding_) {
            winding_ = it.winding;
            rec(EMR_SETPOLYFILLMODE, {it.winding ? 2u : 1u});
        }
        selectPen(nullptr, 0);
        selectBrush(&it.color);
        quint32 points = 0;
        for (const auto& p : it.polys)
            points += quint32(p.size());
        b_.u32(EMR_POLYPOLYGON);
        b_.u32(quint32(8 + 16 + 8 + 4 * it.polys.size() + 8 * points));
        bounds(it.polys);
        b_.u32(quint32(it.polys.size()));
        b_.u32(points);
        for (const auto& p : it.polys)
            b_.u32(quint32(p.size()));
        for (const auto& p : it.polys)
            for (const QPointF& pt : p) {
                b_.i32(L(pt.x()));
                b_.i32(L(pt.y()));
            }
        ++records_;
    }

    void stroke(const VecPrimitive& it)
    {
        selectBrush(nullptr);
        selectPen(&it.color, it.width);
        for (const auto& p : it.polys) {
            b_.u32(EMR_POLYLINE);
            b_.u32(quint32(8 + 16 + 4 + 8 * p.size()));
            bounds({p});
            b_.u32(quint32(p.size()));
            for (const QPointF& pt : p) {
                b_.i32(L(pt.x()));
                b_.i32(L(pt.y()));
            }
            ++records_;
        }
    }

    void text(const VecPrimitive& it)
    {
        // A font object per run: the runs are few, and each carries its own size and angle.
        rec(EMR_SELECTOBJECT, {0x8000000D}); // SYSTEM_FONT, so the old font can go
        if (font_)
            rec(EMR_DELETEOBJECT, {3});
        const QString face = it.font.family().left(31);
        b_.u32(EMR_EXTCREATEFONTINDIRECTW);
        b_.u32(12 + 92);
        b_.u32(3);
        b_.i32(-L(it.font.pixelSize()));
        b_.i32(0);
        b_.i32(Escapement(it.angle));
        b_.i32(Escapement(it.angle));
        b_.i32(Weight(it.font));
        b_.u8(it.font.italic());
        b_.u8(it.font.underline());
        b_.u8(it.font.strikeOut());
        b_.u8(1); // default charset
        b_.u8(0);
        b_.u8(0);
        b_.u8(4); // antialiased quality
        b_.u8(0);
        for (int i = 0; i < 32; ++i)
            b_.u16(i < face.size() ? face[i].unicode() : 0);
        ++records_;
        rec(EMR_SELECTOBJECT, {3});
        font_ = true;
        rec(EMR_SETTEXTCOLOR, {ColorRef(it.color)});

        // Advances from the font the chart was laid out with, so the text fills the same room.
        QFont f = it.font;
        QFontMetricsF fm(f);
        const QString& s = it.text;
        const int n = int(s.size());
        const quint32 strBytes = quint32((n * 2 + 3) & ~3);
        const quint32 offString = 76, offDx = offString + strBytes;
        QRectF box(it.pos.x(), it.pos.y() - fm.ascent(), fm.horizontalAdvance(s), fm.height());
        b_.u32(EMR_EXTTEXTOUTW);
        b_.u32(offDx + 4 * quint32(n));
        b_.i32(int(std::floor(box.left())));
        b_.i32(int(std::floor(box.top())));
        b_.i32(int(std::ceil(box.right())));
        b_.i32(int(std::ceil(box.bottom())));
        b_.u32(1);  // compatible graphics mode
        b_.f32(0);  // scales unused in that mode
        b_.f32(0);
        b_.i32(L(it.pos.x()));
        b_.i32(L(it.pos.y()));
        b_.u32(quint32(n));
        b_.u32(offString);
        b_.u32(0); // options
        b_.i32(0); // no clipping rectangle
        b_.i32(0);
        b_.i32(-1);
        b_.i32(-1);
        b_.u32(offDx);
        for (QChar c : s)
            b_.u16(c.unicode());
        b_.pad4();
        double carried = 0;
        for (int i = 0; i < n; ++i) {
            if (s[i].isLowSurrogate()) {
                b_.i32(0);
                continue;
            }
            const QString ch = s[i].isHighSurrogate() && i + 1 < n ? s.mid(i, 2) : QString(s[i]);
            const double adv = fm.horizontalAdvance(ch) * kEmfScale + carried;
            const qint32 whole = qint32(std::lround(adv));
            carried = adv - whole;
            b_.i32(whole);
        }
        ++records_;
    }

    void image(const VecPrimitive& it)
    {
        const QImage img = it.image.convertToFormat(QImage::Format_RGB888);
        const int w = img.width(), h = img.height();
        if (w <= 0 || h <= 0)
            return;
        const quint32 stride = quint32((w * 3 + 3) & ~3);
        const quint32 bits = stride * quint32(h);
        b_.u32(EMR_STRETCHDIBITS);
        b_.u32(80 + 40 + bits);
        b_.i32(int(std::floor(it.target.left())));
        b_.i32(int(std::floor(it.target.top())));
        b_.i32(int(std::ceil(it.target.right())));
        b_.i32(int(std::ceil(it.target.bottom())));
        b_.i32(L(it.target.left()));
        b_.i32(L(it.target.top()));
        b_.i32(0);
        b_.i32(0);
        b_.i32(w);
        b_.i32(h);
        b_.u32(80);
        b_.u32(40);
        b_.u32(120);
        b_.u32(bits);
        b_.u32(0);          // RGB colours
        b_.u32(0x00CC0020); // source copy
        b_.i32(L(it.target.width()));
        b_.i32(L(it.target.height()));
        b_.u32(40);
        b_.i32(w);
        b_.i32(h); // bottom-up
        b_.u16(1);
        b_.u16(24);
        b_.u32(0);
        b_.u32(bits);
        b_.i32(3780);
        b_.i32(3780);
        b_.u32(0);
        b_.u32(0);
        for (int y = h - 1; y >= 0; --y) {
            const uchar* line = img.constScanLine(y);
            QByteArray row(int(stride), '\0');
            for (int x = 0; x < w; ++x) {
                row[3 * x] = char(line[3 * x + 2]);
                row[3 * x + 1] = char(line[3 * x + 1]);
                row[3 * x + 2] = char(line[3 * x]);
            }
            b_.bytes(row);
        }
        ++records_;
    }

    QSize size_;
    LeBuffer b_;
    quint32 records_ = 0;
    bool pen_ = false, brush_ = false, font_ = false;
    quint64 penKey_ = 0xFFFFFFFFFFFFFFFEull, brushKey_ = 0xFFFFFFFFFFFFFFFEull;
    bool winding_ = false;
};

// ---- WMF ----------------------------------------------------------------------------------

class WmfWriter {
public:
    explicit WmfWriter(QSize size) : size_(size)
    {
        const int longest = std::max(1, std::max(size.width(), size.height()));
        scale_ = std::clamp(32000 / longest, 1, 8); // 16-bit coordinates
    }

    QByteArray write(const VectorPicture& pic)
    {
        rec(0x020B, {0, 0});                                                            // window origin
        rec(0x020C, {qint16(size_.height() * scale_), qint16(size_.width() * scale_)}); // window extent (y, x)
        rec(0x0102, {1});                                                               // transparent text background
        rec(0x012E, {24});                                                              // baseline alignment
        for (const auto& it : pic.items) {
            switch (it.kind) {
            case VecPrimitive::Fill: fill(it); break;
            case VecPrimitive::Stroke: stroke(it); break;
            case VecPrimitive::Text: text(it); break;
            case VecPrimitive::Image: break; // a chart exported for a slide carries no picture
            }
        }
        rec(0x0000, {});

        LeBuffer out;
        // Placeable header: bounds and units per inch, so viewers know the picture's size.
        out.u32(0x9AC6CDD7);
        out.u16(0);
        out.i16(0);
        out.i16(0);
        out.i16(qint16(size_.width() * scale_));
        out.i16(qint16(size_.height() * scale_));
        out.u16(quint16(96 * scale_));
        out.u32(0);
        quint16 sum = 0;
        for (int i = 0; i < 10; ++i)
            sum ^= qFromLittleEndian<quint16>(out.data().constData() + 2 * i);
        out.u16(sum);
        // Standard header.
        out.u16(1);
        out.u16(9);
        out.u16(0x0300);
        out.u32(quint32((18 + body_.size()) / 2));
        out.u16(quint16(std::max<size_t>(1, slots_.size())));
        out.u32(maxRecord_);
        out.u16(0);
        out.bytes(body_.data());
        return out.data();
    }

private:
    qint16 L(double px) const { return qint16(std::clamp<long>(std::lround(px * scale_), -32768, 32767)); }

    void rec(quint16 fn, std::initializer_list<qint16> params)
    {
        const quint32 words = 3 + quint32(params.size());
        body_.u32(words);
        body_.u16(fn);
        for (qint16 v : params)
            body_.i16(v);
        maxRecord_ = std::max(maxRecord_, words);
    }

    void begin(quint16 fn, qsizetype& at)
    {
        at = body_.size();
        body_.u32(0);
        body_.u16(fn);
    }
    void finish(qsizetype at)
    {
        body_.pad2();
        const quint32 words = quint32((body_.size() - at) / 2);
        body_.patch32(at, words);
        maxRecord_ = std::max(maxRecord_, words);
    }

    int newSlot()
    {
        for (size_t i = 0; i < slots_.size(); ++i)
            if (!slots_[i]) {
                slots_[i] = true;
                return int(i);
            }
        slots_.push_back(true);
        return int(slots_.size()) - 1;
    }
    void replace(int& current, int fresh)
    {
        rec(0x012D, {qint16(fresh)});
        if (current >= 0) {
            rec(0x01F0, {qint16(current)});
            slots_[size_t(current)] = false;
        }
        current = fresh;
    }

    void pen(const QColor* c, double width)
    {
        const quint64 key = c ? (quint64(ColorRef(*c)) << 16 | quint64(std::lround(width * 4))) : ~quint64(0);
        if (key == penKey_)
            return;
        penKey_ = key;
        const int slot = newSlot();
        const quint32 ref = c ? ColorRef(*c) : 0;
        rec(0x02FA, {qint16(c ? 0 : 5), qint16(c && width > 1.01 ? L(width) : 0), 0, qint16(ref & 0xFFFF), qint16(ref >> 16)});
        replace(pen_, slot);
    }

    void brush(const QColor* c)
    {
        const quint64 key = c ? quint64(ColorRef(*c)) : ~quint64(0);
        if (key == brushKey_)
            return;
        brushKey_ = key;
        const int slot = newSlot();
        const quint32 ref = c ? ColorRef(*c) : 0;
        rec(0x02FC, {qint16(c ? 0 : 1), qint16(ref & 0xFFFF), qint16(ref >> 16), 0});
        replace(brush_, slot);
    }

    void fill(const VecPrimitive& it)
    {
        if (it.winding != winding_) {
            winding_ = it.winding;
            rec(0x0106, {qint16(it.winding ? 2 : 1)});
        }
        pen(nullptr, 0);
        brush(&it.color);
        qsizetype at;
        if (it.polys.size() == 1) {
            begin(0x0324, at);
            body_.i16(qint16(it.polys[0].size()));
        } else {
            begin(0x0538, at);
            body_.i16(qint16(it.polys.size()));
            for (const auto& p : it.polys)
                body_.i16(qint16(p.size()));
        }
        for (const auto& p : it.polys)
            for (const QPointF& pt : p) {
                body_.i16(L(pt.x()));
                body_.i16(L(pt.y()));
            }
        finish(at);
    }

    void stroke(const VecPrimitive& it)
    {
        brush(nullptr);
        pen(&it.color, it.width);
        for (const auto& p : it.polys) {
            qsizetype at;
            begin(0x0325, at);
            body_.i16(qint16(p.size()));
            for (const QPointF& pt : p) {
                body_.i16(L(pt.x()));
                body_.i16(L(pt.y()));
            }
            finish(at);
        }
    }

    void text(const VecPrimitive& it)
    {
        const int slot = newSlot();
        qsizetype at;
        begin(0x02FB, at);
        body_.i16(qint16(-L(it.font.pixelSize())));
        body_.i16(0);
        body_.i16(qint16(Escapement(it.angle)));
        body_.i16(qint16(Escapement(it.angle)));
        body_.i16(qint16(Weight(it.font)));
        body_.u8(it.font.italic());
        body_.u8(it.font.underline());
        body_.u8(it.font.strikeOut());
        body_.u8(0); // ANSI
        body_.u8(0);
        body_.u8(0);
        body_.u8(4);
        body_.u8(0);
        QByteArray face = it.font.family().toLatin1().left(31);
        face.resize(32, '\0');
        body_.bytes(face);
        finish(at);
        replace(font_, slot);
        const quint32 ref = ColorRef(it.color);
        rec(0x0209, {qint16(ref & 0xFFFF), qint16(ref >> 16)});

        QFontMetricsF fm(it.font);
        QByteArray s = it.text.toLatin1();
        begin(0x0A32, at);
        body_.i16(L(it.pos.y()));
        body_.i16(L(it.pos.x()));
        body_.i16(qint16(s.size()));
        body_.u16(0);
        QByteArray padded = s;
        if (padded.size() % 2)
            padded.append('\0');
        body_.bytes(padded);
        double carried = 0;
        for (int i = 0; i < it.text.size() && i < s.size(); ++i) {
            const double adv = fm.horizontalAdvance(it.text[i]) * scale_ + carried;
            const qint16 whole = qint16(std::lround(adv));
            carried = adv - whole;
            body_.i16(whole);
        }
        finish(at);
    }

    QSize size_;
    int scale_ = 1;
    LeBuffer body_;
    quint32 maxRecord_ = 3;
    std::vector<bool> slots_;
    int pen_ = -1, brush_ = -1, font_ = -1;
    quint64 penKey_ = 0xFFFFFFFFFFFFFFFEull, brushKey_ = 0xFFFFFFFFFFFFFFFEull;
    bool winding_ = false;
};

// ---- EPS ----------------------------------------------------------------------------------

QByteArray Num(double v) { return QByteArray::number(std::round(v * 100) / 100, 'g', 10); }

void PsPath(QByteArray& out, const std::vector<QPolygonF>& polys, bool close)
{
    for (const auto& p : polys) {
        for (int i = 0; i < p.size(); ++i)
            out += Num(p[i].x()) + ' ' + Num(p[i].y()) + (i == 0 ? " m\n" : " l\n");
        if (close)
            out += "h\n";
    }
}

QByteArray PsColor(const QColor& c) { return Num(c.redF()) + ' ' + Num(c.greenF()) + ' ' + Num(c.blueF()) + " rg\n"; }

} // namespace

QByteArray WriteEmf(const VectorPicture& pic) { return EmfWriter(pic.size).write(pic); }

QByteArray WriteWmf(const VectorPicture& pic) { return WmfWriter(pic.size).write(pic); }

QByteArray WriteEps(const VectorPicture& pic)
{
    // Drawn in pixels with y downwards, scaled to points at 96 pixels to the inch.
    const double w = pic.size.width() * 0.75, h = pic.size.height() * 0.75;
    QByteArray out;
    out += "%!PS-Adobe-3.0 EPSF-3.0\n";
    out += "%%BoundingBox: 0 0 " + QByteArray::number(int(std::ceil(w))) + ' ' + QByteArray::number(int(std::ceil(h))) + '\n';
    out += "%%HiResBoundingBox: 0 0 " + Num(w) + ' ' + Num(h) + '\n';
    out += "%%Creator: tallix chart surface\n%%Title: chart\n%%LanguageLevel: 2\n%%Pages: 1\n%%EndComments\n";
    out += "%%BeginProlog\n/m {moveto} bind def /l {lineto} bind def /h {closepath} bind def\n"
           "/rg {setrgbcolor} bind def\n%%EndProlog\n%%Page: 1 1\n";
    out += "save\n0 " + Num(h) + " translate 0.75 -0.75 scale\n1 setlinejoin 1 setlinecap\n";
    for (const auto& it : pic.items) {
        switch (it.kind) {
        case VecPrimitive::Fill:
            out += "newpath\n";
            PsPath(out, it.polys, true);
            out += PsColor(it.color) + (it.winding ? "fill\n" : "eofill\n");
            break;
        case VecPrimitive::Stroke:
            out += "newpath\n";
            PsPath(out, it.polys, false);
            out += PsColor(it.color) + Num(it.width) + " setlinewidth stroke\n";
            break;
        case VecPrimitive::Text: {
            // Text goes as outlines: the picture then needs no fonts where it is shown.
            QPainterPath path;
            path.addText(QPointF(0, 0), it.font, it.text);
            QTransform t;
            t.translate(it.pos.x(), it.pos.y());
            t.rotate(it.angle);
            path = t.map(path);
            out += "newpath\n";
            const QList<QPolygonF> glyphs = path.toSubpathPolygons();
            PsPath(out, std::vector<QPolygonF>(glyphs.begin(), glyphs.end()), true);
            out += PsColor(it.color) + (path.fillRule() == Qt::WindingFill ? "fill\n" : "eofill\n");
            break;
        }
        case VecPrimitive::Image: {
            const QImage img = it.image.convertToFormat(QImage::Format_RGB888);
            if (img.isNull())
                break;
            out += "gsave\n" + Num(it.target.left()) + ' ' + Num(it.target.top()) + " translate " + Num(it.target.width()) +
                   ' ' + Num(it.target.height()) + " scale\n";
            out += QByteArray::number(img.width()) + ' ' + QByteArray::number(img.height()) + " 8 [" +
                   QByteArray::number(img.width()) + " 0 0 " + QByteArray::number(img.height()) +
                   " 0 0]\ncurrentfile /ASCIIHexDecode filter false 3 colorimage\n";
            for (int y = 0; y < img.height(); ++y)
                out += QByteArray(reinterpret_cast<const char*>(img.constScanLine(y)), img.width() * 3).toHex() + '\n';
            out += ">\ngrestore\n";
            break;
        }
        }
    }
    out += "restore\nshowpage\n%%Trailer\n%%EOF\n";
    return out;
}

} // namespace tallix
