#include "controller_config.h"

#include "foundation/environment.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace tallix {

QList<BaseConfig> ControllerConfig::basesInUse() const
{
    QList<BaseConfig> out;
    for (const auto& b : bases)
        if (b.inUse)
            out.append(b);
    return out;
}

QList<int> ControllerConfig::roomKeypads() const
{
    QSet<int> seen;
    QList<int> out;
    for (const auto& b : bases) {
        if (!b.inUse)
            continue;
        for (int k = b.firstKeypad(); k <= b.lastKeypad(); ++k)
            if (k >= 1 && !seen.contains(k)) {
                seen.insert(k);
                out.append(k);
            }
    }
    std::sort(out.begin(), out.end());
    return out;
}

int ControllerConfig::baseOfKeypad(int k) const
{
    for (const auto& b : bases)
        if (b.inUse && k >= b.firstKeypad() && k <= b.lastKeypad())
            return b.index;
    return -1;
}

int ControllerConfig::effectiveMaxKeypads() const
{
    return maxKeypads >= 0 ? maxKeypads : int(roomKeypads().size());
}

int ControllerConfig::effectiveLo() const
{
    if (keypadsNotVotedLo >= 0)
        return keypadsNotVotedLo;
    const QList<int> room = roomKeypads();
    return room.isEmpty() ? 1 : room.front();
}

int ControllerConfig::effectiveHi() const
{
    if (keypadsNotVotedHi >= 0)
        return keypadsNotVotedHi;
    const QList<int> room = roomKeypads();
    return room.isEmpty() ? 0 : room.back();
}

ControllerConfig ControllerConfig::defaults()
{
    ControllerConfig c;
    c.bases.append(BaseConfig{0, "TALLIX", 0, 1, 100, true});
    return c;
}

namespace {

class Parser {
public:
    Parser(QString fileName) : file_(std::move(fileName)) {}

    void error(int line, const QString& what) { errors.append(QString("%1 line %2: %3").arg(file_).arg(line).arg(what)); }

    bool integer(int line, const QString& key, const QString& v, int lo, int hi, int& out)
    {
        bool ok = false;
        const qlonglong n = v.toLongLong(&ok);
        if (!ok) {
            error(line, QString("%1 \"%2\" is not a whole number").arg(key, v));
            return false;
        }
        if (n < lo || n > hi) {
            error(line, QString("%1 %2 is outside %3 to %4").arg(key, v).arg(lo).arg(hi));
            return false;
        }
        out = int(n);
        return true;
    }

    bool number(int line, const QString& key, const QString& v, double& out)
    {
        bool ok = false;
        const double d = v.toDouble(&ok); // always "." as the decimal point
        if (!ok || d < 0) {
            error(line, QString("%1 \"%2\" is not a number of 0 or more").arg(key, v));
            return false;
        }
        out = d;
        return true;
    }

    bool boolean(int line, const QString& key, const QString& v, bool& out)
    {
        const QString l = v.toLower();
        if (l == "true" || l == "1" || l == "yes" || l == "on") {
            out = true;
            return true;
        }
        if (l == "false" || l == "0" || l == "no" || l == "off") {
            out = false;
            return true;
        }
        error(line, QString("%1 \"%2\" is not True or False").arg(key, v));
        return false;
    }

    QStringList errors;

private:
    QString file_;
};

constexpr int kMaxKeypadNumber = 1'000'000;
constexpr int kMaxBases = 256;

} // namespace

ConfigResult ParseControllerConfig(const QString& text, const QString& fileName)
{
    ConfigResult r;
    Parser p(fileName);
    ControllerConfig& c = r.config;

    static const QRegularExpression baseSection("^base\\s*(\\d+)$", QRegularExpression::CaseInsensitiveOption);
    enum class Section { None, Controller, Base } section = Section::None;
    BaseConfig* base = nullptr;
    QList<BaseConfig> bases;
    QList<int> baseLines;

    const QStringList lines = QString(text).replace("\r\n", "\n").split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const int ln = i + 1;
        QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith(';') || line.startsWith('#'))
            continue;
        // A comment after a header or a value, as most ini files allow.
        if (const qsizetype semi = line.indexOf(" ;"); semi >= 0)
            line = line.left(semi).trimmed();
        if (line.startsWith('[')) {
            if (!line.endsWith(']')) {
                p.error(ln, QString("section header \"%1\" has no closing ]").arg(line));
                section = Section::None;
                continue;
            }
            const QString name = line.mid(1, line.size() - 2).trimmed();
            const auto m = baseSection.match(name);
            if (name.compare("controller", Qt::CaseInsensitive) == 0) {
                section = Section::Controller;
            } else if (m.hasMatch()) {
                int index = 0;
                if (!p.integer(ln, "base index", m.captured(1), 0, kMaxBases - 1, index)) {
                    section = Section::None;
                    continue;
                }
                if (std::any_of(bases.begin(), bases.end(), [&](const BaseConfig& b) { return b.index == index; })) {
                    p.error(ln, QString("base %1 is described twice").arg(index));
                    section = Section::None;
                    continue;
                }
                bases.append(BaseConfig{index, "", 0, 1, 100, true});
                baseLines.append(ln);
                base = &bases.back();
                section = Section::Base;
            } else {
                p.error(ln, QString("unknown section [%1]; expected [Controller] or [Base0], [Base1], ...").arg(name));
                section = Section::None;
            }
            continue;
        }
        const qsizetype eq = line.indexOf('=');
        if (eq < 0) {
            p.error(ln, QString("\"%1\" is not a key=value line").arg(line));
            continue;
        }
        const QString key = line.left(eq).trimmed();
        const QString value = line.mid(eq + 1).trimmed();
        const QString k = key.toLower();

        if (section == Section::None) {
            p.error(ln, QString("%1 stands outside any section").arg(key));
        } else if (section == Section::Controller) {
            if (k == "maxkeypads")
                p.integer(ln, key, value, 0, kMaxKeypadNumber, c.maxKeypads);
            else if (k == "keypadsnotvotedlo")
                p.integer(ln, key, value, 0, kMaxKeypadNumber, c.keypadsNotVotedLo);
            else if (k == "keypadsnotvotedhi")
                p.integer(ln, key, value, 0, kMaxKeypadNumber, c.keypadsNotVotedHi);
            else if (k == "keypadsnotvotedpopupon")
                p.integer(ln, key, value, 0, 32767, c.popupOn);
            else if (k == "keypadsnotvotedhowmanytoshow")
                p.integer(ln, key, value, 0, 32767, c.howManyToShow);
            else if (k == "keypadsnotvotedclose")
                p.integer(ln, key, value, 0, 1, c.closeByPercent);
            else if (k == "keypadsnotvotedclosepercent") {
                if (p.number(ln, key, value, c.closePercent) && c.closePercent > 100)
                    p.error(ln, QString("%1 %2 is above 100").arg(key, value));
            } else if (k == "numkeypads")
                p.integer(ln, key, value, 0, kMaxKeypadNumber, c.numKeypads);
            else if (k == "useoffsets")
                p.boolean(ln, key, value, c.useOffsets);
            else if (k == "scrollingdisplay")
                p.boolean(ln, key, value, c.scrollingDisplay);
            else
                p.error(ln, QString("unknown key %1 in [Controller]").arg(key));
        } else {
            if (k == "type") {
                // The reply is KEY=value lines split at "=" and CR LF, so neither may appear.
                if (value.isEmpty() || value.contains('=') || value.contains('\r') || value.contains('\n'))
                    p.error(ln, QString("Type \"%1\" must be a non-empty name without \"=\"").arg(value));
                else
                    base->type = value;
            } else if (k == "offset")
                p.integer(ln, key, value, -32768, 32767, base->offset);
            else if (k == "low")
                p.integer(ln, key, value, 0, kMaxKeypadNumber, base->low);
            else if (k == "high")
                p.integer(ln, key, value, 0, kMaxKeypadNumber, base->high);
            else if (k == "inuse")
                p.boolean(ln, key, value, base->inUse);
            else
                p.error(ln, QString("unknown key %1 in a base section").arg(key));
        }
    }

    for (int i = 0; i < bases.size(); ++i)
        if (bases[i].type.isEmpty())
            p.error(baseLines[i], QString("base %1 has no Type").arg(bases[i].index));

    if (!bases.isEmpty()) {
        std::sort(bases.begin(), bases.end(), [](const BaseConfig& a, const BaseConfig& b) { return a.index < b.index; });
        c.bases = bases;
    } else {
        c.bases = ControllerConfig::defaults().bases;
    }
    // Without a BASETYPE line the voting module does not see the reply as settings at all.
    if (c.basesInUse().isEmpty())
        p.error(lines.size(), "no base is in use; at least one base needs InUse=True");
    r.errors = p.errors;
    return r;
}

ConfigResult LoadControllerConfig(const QString& path)
{
    if (path.isEmpty() || !QFile::exists(path))
        return {ControllerConfig::defaults(), {}};
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        ConfigResult r{ControllerConfig::defaults(), {}};
        r.errors.append(QString("%1: cannot be read: %2").arg(path, f.errorString()));
        return r;
    }
    return ParseControllerConfig(QString::fromUtf8(f.readAll()), path);
}

QString FindControllerConfig(const Environment& env)
{
    const QString perUser = JoinPath(env.perUserBase(), "\\tallix\\tlxctrl.ini");
    if (FileExists(perUser))
        return perUser;
    const QString allUsers = JoinPath(env.allUsersBase(), "\\tallix\\tlxctrl.ini");
    if (FileExists(allUsers))
        return allUsers;
    return {};
}

namespace {
QString boolText(bool b) { return b ? "True" : "False"; }
QString numberText(double d) { return QString::number(d, 'g', 15); }
} // namespace

QString BuildBaseInfoReply(const ControllerConfig& c)
{
    const QString eol = "\r\n";
    QString out;
    auto line = [&](const QString& key, const QString& value) { out += key + "=" + value + eol; };

    for (const auto& b : c.basesInUse())
        line("BASETYPE", b.type);
    line("KEYPADSNOTVOTEDLO", QString::number(c.effectiveLo()));
    line("KEYPADSNOTVOTEDHI", QString::number(c.effectiveHi()));
    line("KEYPADSNOTVOTEDPOPUPON", QString::number(c.popupOn));
    line("KEYPADSNOTVOTEDHOWMANYTOSHOW", QString::number(c.howManyToShow));
    line("KEYPADSNOTVOTEDCLOSE", QString::number(c.closeByPercent));
    line("KEYPADSNOTVOTEDCLOSEPERCENT", numberText(c.closePercent));
    line("NUMKEYPADS", QString::number(c.numKeypads >= 0 ? c.numKeypads : c.effectiveMaxKeypads()));
    line("USEOFFSETS", boolText(c.useOffsets));
    line("SCROLLINGDISPLAY", boolText(c.scrollingDisplay));
    // The fifth field reads "False" for a base in use: the receiver skips any other text.
    for (const auto& b : c.bases)
        line("OFFSET", QString("%1,%2,%3,%4,%5").arg(b.index).arg(b.offset).arg(b.low).arg(b.high).arg(b.inUse ? "False" : "True"));
    // Last, since it is the line that ends the voting module's wait for the reply.
    line("MAXKEYPADS", QString::number(c.effectiveMaxKeypads()));
    return out;
}

} // namespace tallix
