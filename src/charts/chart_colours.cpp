#include "chart_colours.h"

#include "foundation/dialogs.h"
#include "foundation/environment.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace tallix {

namespace {
const char* kModule = "Common_ChartDisplay";

// Placeholders whose text may stand for the slide's body text when no body is there.
constexpr int kFallbackPlaceholders[] = {host::PlaceholderType::Body, host::PlaceholderType::Object,
                                         host::PlaceholderType::VerticalBody, host::PlaceholderType::Subtitle};

QString BarKey(int i) { return QStringLiteral("Bar%1").arg(i, 3, 10, QLatin1Char('0')); }

// Below this a bar is hard to tell from what stands behind it.
constexpr double kMinBarContrast = 1.5;

double RelativeLuminance(long bgr)
{
    auto channel = [](long v) {
        const double c = double(v & 0xFF) / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(bgr) + 0.7152 * channel(bgr >> 8) + 0.0722 * channel(bgr >> 16);
}
} // namespace

double ContrastRatio(long bgr1, long bgr2)
{
    const double a = RelativeLuminance(bgr1);
    const double b = RelativeLuminance(bgr2);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

int OptionColourIndex(int option)
{
    if (option <= 10)
        return option;
    // The fractional part of option/10, times 10, in the runtime's single precision.
    const double tenth = option / 10.0;
    return int(std::lround((tenth - std::floor(tenth)) * 10.0));
}

QString HostColourOrder(const QString& version)
{
    return int(tlxVal(version)) >= 12 ? QStringLiteral("5,6,7,8,3,2,4") : QStringLiteral("5,6,7,8,9,10,1,2,3,4");
}

void LoadDefaultColours(RunContext& ctx, short fromPresentation)
{
    Guarded(ctx, kModule, "LoadDefaultColours", true, 0, [&] {
        // The program's folder ships it as "Default.xml"; the name is matched without case.
        const QString file = FindFileNoCase(ctx.app.folder, QStringLiteral("default.xml"));
        if (!FileExists(file)) {
            if (ctx.dialogs)
                ctx.dialogs->MsgBox(QStringLiteral("Default XML file does not exist, shutting down."), 0,
                                    QStringLiteral("tallix - vote"));
            FullShutDown(ctx);
            return 0;
        }
        SettingsDocument doc;
        const bool loaded = doc.load(file);
        pugi::xml_node bars = doc.doc().select_node("//BarColours").node();
        if (loaded && bars && !NodeText(bars).isEmpty()) {
            // DefaultColours names the entries of BarColours that carry the defaults.
            pugi::xml_node defaults = doc.doc().select_node("//DefaultColours").node();
            for (pugi::xml_node n = defaults.first_child(); n; n = n.next_sibling()) {
                if (NodeName(n) == QLatin1String("#comment") || n.type() != pugi::node_element)
                    continue;
                pugi::xml_node match = bars.child(n.name());
                const int index = NodeName(n).mid(3).toInt();
                if (match && index >= 0 && index <= ctx.optionColours.ubound())
                    Guarded(ctx, kModule, "LoadDefaultColours", false, 0, [&] {
                        ctx.optionColours(index) = CLng(NodeText(match));
                        return 0;
                    });
            }
        }
        for (int i = 0; i <= ctx.optionColours.ubound(); ++i) {
            pugi::xml_node node = doc.doc().select_node(S(QStringLiteral("//") + BarKey(i)).c_str()).node();
            if (!node)
                continue;
            // A bad value is reported and leaves the colour as it was.
            Guarded(ctx, kModule, "LoadDefaultColours", false, 0, [&] {
                ctx.optionColours(i) = CLng(NodeText(node));
                return 0;
            });
        }
        if (fromPresentation)
            SetColoursFromPPT(ctx);
        return 0;
    });
}

short SetColoursFromPPT(RunContext& ctx)
{
    return Guarded<short>(ctx, kModule, "SetColoursFromPPT", false, short(0), [&]() -> short {
        WriteDebugLog(ctx, 0, QStringLiteral("Start Function"), kModule, "SetColoursFromPPT");
        if (!ctx.oPPT)
            return 0;
        const QStringList order = HostColourOrder(ctx.oPPT->Version()).split(QLatin1Char(','));
        host::Presentation* pres = ctx.oPres ? ctx.oPres : ctx.oPPT->ActivePresentation();
        // The chart stands on the slide, whose background is the theme's first light colour;
        // the light and dark entries of the order can vanish against it.
        const long background = pres->ThemeColorScheme(host::ThemeColor::Light1);
        for (int i = 0; i < order.size(); ++i) {
            const long colour = pres->ThemeColorScheme(order[i].toInt());
            // The writer reports its own failures; a key it had to add is no failure.
            XMLSetSingleNode(ctx, QStringLiteral("BarColours"), BarKey(i), QString::number(colour));
            if (i <= ctx.optionColours.ubound() && ContrastRatio(colour, background) >= kMinBarContrast)
                ctx.optionColours(i) = qint32(colour);
        }
        WriteDebugLog(ctx, 0, QStringLiteral("End Function"), kModule, "SetColoursFromPPT");
        return -1;
    });
}

namespace {
host::Shape* BodyShape(host::Slide* slide, bool anyPlaceholder)
{
    if (!slide)
        return nullptr;
    host::Shapes* shapes = slide->GetShapes();
    for (int i = 1; i <= shapes->Count(); ++i) {
        host::Shape* s = shapes->Item(i);
        if (!s->HasTextFrame())
            continue;
        const int type = s->PlaceholderFormatType();
        if (anyPlaceholder) {
            for (int t : kFallbackPlaceholders)
                if (type == t)
                    return s;
        } else if (s->AutoShapeType() == host::AutoShape::Rectangle && type == host::PlaceholderType::Body) {
            return s;
        }
    }
    return nullptr;
}
} // namespace

void SetFontFromPPT(RunContext& ctx)
{
    Guarded(ctx, kModule, "SetFontFromPPT", false, 0, [&] {
        if (!ctx.oPPT)
            return 0;
        host::Slide* onView = nullptr;
        if (ctx.oPPT->WindowsCount() > 0)
            onView = ctx.oPPT->Windows(1)->GetView()->GetSlide();
        host::Shape* body = BodyShape(onView, false);
        host::Slide* inShow = nullptr;
        if (!body && ctx.oPPT->SlideShowWindowsCount() > 0) {
            inShow = ctx.oPPT->SlideShowWindows(1)->GetView()->GetSlide();
            body = BodyShape(inShow, false);
        }
        if (!body)
            body = BodyShape(inShow ? inShow : onView, true);
        if (body) {
            const host::Font f = body->GetTextFrame()->GetFont();
            ctx.FontSize = short(std::nearbyint(f.Size * 1.1));
            ctx.Font.Name = f.Name;
            ctx.Font.Colour = qint32(f.Color);
            ctx.Font.Bold = f.Bold ? QStringLiteral("True") : QStringLiteral("False");
            ctx.Font.Italic = f.Italic;
            ctx.Font.Underline = f.Underline;
        }
        if (ctx.FontSize < 1 || ctx.FontSize > 24)
            ctx.FontSize = 24;
        ctx.Font.Size = ctx.FontSize;
        const QString sec = QStringLiteral("Font");
        XMLSetSingleNode(ctx, sec, QStringLiteral("Name"), ctx.Font.Name);
        XMLSetSingleNode(ctx, sec, QStringLiteral("Size"), QString::number(ctx.FontSize));
        XMLSetSingleNode(ctx, sec, QStringLiteral("Colour"), QString::number(ctx.Font.Colour));
        XMLSetSingleNode(ctx, sec, QStringLiteral("Bold"), ctx.Font.Bold);
        XMLSetSingleNode(ctx, sec, QStringLiteral("Italic"), CStrBool(ctx.Font.Italic));
        XMLSetSingleNode(ctx, sec, QStringLiteral("Underline"), CStrBool(ctx.Font.Underline));
        return 0;
    });
}

} // namespace tallix
