#include "reshow_setup.h"

#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/numbers.h"
#include "foundation/vb_error.h"
#include "question/columns_vote_xml.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "question/slide_objects.h"
#include "vote/run_context.h"

namespace tallix {

namespace {

const char* kModule = "Common_Reshow";
constexpr double kSlideListLife = 900;

VArea& chartArea(RunContext& ctx, int n)
{
    if (ctx.vArea.ubound() < n)
        ctx.vArea.redimPreserve(n);
    if (ctx.reshowFilter.ubound() < n)
        ctx.reshowFilter.redimPreserve(n);
    return ctx.vArea(n);
}

// The labels of a question's groups: GroupOption001 and on, as many as its group_info holds.
QStringList groupLabels(const pugi::xml_node& groupInfo)
{
    QStringList labels;
    int count = 0;
    for (pugi::xml_node c = groupInfo.first_child(); c; c = c.next_sibling())
        count += c.type() == pugi::node_element;
    for (int i = 1; i <= count; ++i)
        labels << NodeText(groupInfo.child(S(QStringLiteral("GroupOption%1").arg(i, 3, 10, QLatin1Char('0'))).c_str()));
    return labels;
}

} // namespace

void SetReshowVarsFromXML(RunContext& ctx)
{
    Guarded(ctx, kModule, "SetReshowVarsFromXML", true, [&] {
        // A document that failed to load is gone; nothing here makes it anew.
        if (!ctx.settingsDoc)
            return;
        ReadSettingsSection(ctx, "file_info", [&](const QString& k, const QString& v) {
            if (k == "AutoStart")
                ctx.AutoStart = CBool(v);
        });
        ReadSettingsSection(ctx, "reshow_info", [&](const QString& k, const QString& v) {
            if (k == "rshFilterType")
                ctx.rshFilterType = CInt(v);
            else if (k == "reshowOnOneChart")
                ctx.reshowOnOneChart = CBool(v);
            else if (k == "ShowLabels")
                ctx.ShowLabels = CBool(v);
        });
        // The look of a reshow's legend; its entries name each chart's filter.
        ReadSettingsSection(ctx, "legend_info", [&](const QString& k, const QString& v) {
            if (ctx.Legends.ubound() < 0)
                ctx.Legends.redim(0);
            LegendRecord& l = ctx.Legends(0);
            if (k == "Alignment")
                l.Alignment = CInt(v);
            else if (k == "Bold")
                l.Bold = CBool(v);
            else if (k == "Colour")
                l.Colour = CLng(v);
            else if (k == "Italic")
                l.Italic = CBool(v);
            else if (k == "Name")
                l.Name = v;
            else if (k == "Size")
                l.Size = CInt(v);
            else if (k == "StrikeThrough")
                l.StrikeThrough = CBool(v);
            else if (k == "Underline")
                l.Underline = CBool(v);
            else if (k == "Outline")
                l.HidePen = !CBool(v);
        });
        // The references keep their line breaks, which the listing form would lose.
        ctx.questionReferences =
            NodeText(ctx.settingsDoc->doc().select_node("//reshow_info/Question_References").node());
        const QString title = XMLGetNodes(ctx, "title_info");
        ctx.reshowTitle = title.contains(u'|') ? title.mid(title.indexOf(u'|') + 1) : QString();
        int charts = 0;
        ReadSettingsSection(ctx, "reshow_graphs", [&](const QString& k, const QString& v) {
            if (k.size() < 4)
                return;
            const int n = int(tlxVal(k.right(3)));
            if (n < 0)
                return;
            const QString key = k.left(k.size() - 3);
            VArea& a = chartArea(ctx, n);
            charts = std::max(charts, n);
            if (key == "QNSLIDE")
                a.questionSlideRef = v;
            else if (key == "GROUPS")
                ctx.reshowFilter(n) = v;
            else if (key == "WIDTH")
                a.Width = float(tlxVal(v));
            else if (key == "HEIGHT")
                a.Height = float(tlxVal(v));
            else if (key == "LEFT")
                a.Left = float(tlxVal(v));
            else if (key == "TOP")
                a.Top = float(tlxVal(v));
        });
        if (charts >= 1)
            SetVareaFromSlide(ctx);
    });
}

void GetSlideInfo(RunContext& ctx, bool keepFresh)
{
    Guarded(ctx, kModule, "GetSlideInfo", true, [&] {
        host::Tags* tags = ctx.oPres->GetTags();
        const double now = ctx.clock->secondsSinceMidnight();
        if (keepFresh) {
            QStringList kept = tags->Item(QStringLiteral("tlx_SlideInfo")).split(QStringLiteral("\r\n"));
            if (kept.size() >= 2 && tlxVal(kept.last()) > now - kSlideListLife) {
                kept.removeLast();
                ctx.slideList = kept;
                return;
            }
        }
        ctx.slideList.clear();
        host::Slides* slides = ctx.oPres->GetSlides();
        for (int i = 1; i <= slides->Count(); ++i) {
            host::Slide* slide = slides->Item(i);
            const QString xml = slide->GetTags()->Item(QStringLiteral("tlxVote"));
            if (xml.isEmpty())
                continue;
            SettingsDocument doc;
            if (!doc.loadXML(xml))
                continue;   // a slide whose question does not read is left out
            const QString qid = NodeText(doc.doc().select_node("//QID").node());
            const QStringList labels = groupLabels(doc.doc().select_node("//group_info").node());
            QString entry = QStringLiteral("%1").arg(slide->SlideID(), 3, 10, QLatin1Char('0')) + u'|' + qid + "|^" +
                            labels.join(u'^') + u'^';
            if (ctx.arg2.contains(QLatin1String(".rsh")))
                entry += u'|' + NodeText(doc.doc().select_node("//converted_from").node());
            ctx.slideList << entry;
        }
        tags->Add(QStringLiteral("tlx_SlideInfo"), (ctx.slideList + QStringList{QString::number(now)}).join("\r\n"));
    });
}

void SetVareaFromSlide(RunContext& ctx)
{
    Guarded(ctx, kModule, "SetVareaFromSlide", true, [&] {
        if (!ctx.makeMode && (!ctx.oPPT || ctx.oPPT->SlideShowWindowsCount() == 0))
            return;
        host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
        const host::PageSetup page = ctx.oPres->GetPageSetup();
        for (int n = 1; n <= ctx.vArea.ubound(); ++n) {
            QStringList names;
            const QString base = QStringLiteral("reshow %1 tallix chart").arg(n);
            host::Shape* found = nullptr;
            if (host::Shape* s = ShapeNamed(slide, base); s && s->Visible())
                found = s;
            for (int k = 0; k <= 9; ++k)
                names << base + QStringLiteral(" %1").arg(k);
            for (char c = 'A'; c <= 'Z'; ++c)
                names << base + u' ' + QChar(c);
            names << QStringLiteral("tallix chart %1 sample").arg(n) << QStringLiteral("tallix chart %1 sample-BAK").arg(n);
            for (const QString& name : names) {
                if (found)
                    break;
                found = ShapeNamed(slide, name);
            }
            if (!found)
                continue;
            VArea& a = ctx.vArea(n);
            a.Left = float(found->Left() / page.SlideWidth);
            a.Top = float(found->Top() / page.SlideHeight);
            a.Width = float(found->Width() / page.SlideWidth);
            a.Height = float(found->Height() / page.SlideHeight);
        }
    });
}

} // namespace tallix
