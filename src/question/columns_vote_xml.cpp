#include "columns_vote_xml.h"

#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "foundation/host.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "question/slide_objects.h"
#include "vote/run_context.h"

#include <cmath>
#include <limits>
#include <functional>

namespace tallix {

namespace {

const char* const kModule = "Common_ColumnsVoteXML";
// The second reader of the document (a reshow chart's question) keeps a few values the
// first one changes; it is on only for the length of that read.
bool chartReader = false;
using KeyHandler = std::function<void(const QString& key, const QString& value)>;

// One section in the reader's common form: fetch, test, split into "key|value" lines.
// A line without "|" fails the whole reader through its error report.
void readSection(RunContext& ctx, const QString& section, const KeyHandler& handle)
{
    const QString listing = XMLGetNodes(ctx, section);
    if (SectionListingFails(section, listing))
        return;
    const QStringList lines = listing.split("\r\n");
    for (const QString& line : lines) {
        if (line.isEmpty())
            continue;
        const qsizetype bar = line.indexOf('|');
        if (bar < 0)
            Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
        handle(line.left(bar), line.mid(bar + 1));
    }
}

void logSection(RunContext& ctx, qint64& mark, const QString& text)
{
    const qint64 now = ctx.clock->perfCounter();
    WriteDebugLog(ctx, float(CounterSeconds(ctx, mark, now)), text, kModule, "SetVarsFromXML");
    mark = now;
}

void readFileInfo(RunContext& ctx)
{
    readSection(ctx, "file_info", [&](const QString& k, const QString& v) {
        if (k == "AutoStart")
            ctx.AutoStart = CBool(v);
        else if (k == "AutoAdvance")
            ctx.AutoAdvance = CBool(v);
        else if (k == "AutoAdvanceTime")
            ctx.AutoAdvanceTime = CLng(v);
    });
}

void readVoteInfo(RunContext& ctx)
{
    readSection(ctx, "vote_info", [&](const QString& k, const QString& v) {
        if (k == "vType") {
            ctx.vType = CInt(v);
            // The dynamic count-up is never started from a document.
            if (ctx.vType == 4)
                ctx.vType = 1;
        } else if (k == "SeriesVType") {
            ctx.SeriesVType = CInt(v);
        } else if (k == "FixedFree") {
            ctx.FixedFree = CInt(v);
        } else if (k == "FractionalJoltTEXT") {
            ctx.FractionalJoltTEXT = CInt(v);
        } else if (k == "JoltMultiVote") {
            ctx.JoltMultiVote = CBool(v);
        } else if (k == "PriorMultiVote") {
            ctx.PriorMultiVote = CInt(v);
        } else if (k == "NumberDecimalPlaces") {
            ctx.NumberDecimalPlaces = CInt(v);
        } else if (k == "NumberSigFigs") {
            ctx.NumberSigFigs = CInt(v);
        } else if (k == "FreeNumDisplay_Type") {
            ctx.FreeNumDisplay_Type = CInt(v);
        } else if (k == "FreeNumDisplay_Order") {
            ctx.FreeNumDisplay_Order = CInt(v);
        } else if (k == "FreeNumDisplay_ShowKP") {
            ctx.FreeNumDisplay_ShowKP = CBool(v);
        } else if (k == "Joltdisplay") {
            ctx.Joltdisplay = CInt(v);
        } else if (k == "Quilmark_Display") {
            ctx.Quilmark_Display = CInt(v);
        } else if (k == "WCColour0") {
            ctx.WCColour[0] = v;
        } else if (k == "WCColour1") {
            ctx.WCColour[1] = v;
        } else if (k == "WCFontSize0") {
            ctx.WCFontSize[0] = v;
        } else if (k == "WCFontSize1") {
            ctx.WCFontSize[1] = v;
        } else if (k == "WLSShow") {
            ctx.WLSShow = CBool(v);
        } else if (k == "WLSListManagementMode") {
            ctx.WLSListManagementMode = CInt(v);
        } else if (k == "WLSDisplay") {
            ctx.WLSDisplay = CInt(v);
        } else if (k == "WLSSpeed") {
            ctx.WLSSpeed = CSng(v);
        } else if (k == "WLSUseResponsesAsNames") {
            ctx.WLSUseResponsesAsNames = CBool(v);
        } else if (k == "startFrom") {
            ctx.startFrom = CInt(v);
        } else if (k == "Abstain") {
            ctx.allowAbstain = CBool(v);
        } else if (k == "options") {
            ctx.optionCount = CInt(v);
            ctx.optionsCopy = ctx.optionCount;
            ctx.voteOptions.redimPreserve(ctx.optionCount);
        } else if (k == "showAsPercentOrNumber") {
            ctx.showAsPercentOrNumber = CInt(v);
        } else if (k == "showAsBothStackedOrSide") {
            ctx.showAsBothStackedOrSide = CInt(v);
        } else if (k == "TimeLeft") {
            ctx.TimeLeft = CInt(v);
            if (ctx.TimeLeft < 1)
                ctx.TimeLeft = 10;
        } else if (k == "CountDownManualStart") {
            ctx.CountDownManualStart = CBool(v);
        } else if (k == "CountDownManualEnd") {
            ctx.CountDownManualEnd = CBool(v);
        } else if (k == "ShowVotesIndicator") {
            ctx.ShowVotesIndicator = CBool(v);
        } else if (k == "SoundFile") {
            ctx.SoundFile = v;
        } else if (k == "HeightRatio") {
            ctx.HeightRatio = tlxVal(v);
        } else if (k == "WidthRatio") {
            ctx.WidthRatio = tlxVal(v);
        } else if (k == "ThreeDTwoD") {
            ctx.ThreeDTwoD = CInt(v);
        } else if (k == "ParticipantWeighting") {
            ctx.ParticipantWeighting = CBool(v);
        } else if (k == "VotesCastLabel") {
            ctx.VotesCastLabel = v;
        } else if (k == "PercentDP") {
            ctx.PercentDP = std::trunc(tlxVal(v));
        }
    });
}

void readVCast(RunContext& ctx)
{
    readSection(ctx, "vCast", [&](const QString& k, const QString& v) {
        if (k == "vCastLeft")
            ctx.vCastLeft = float(tlxVal(v));
        else if (k == "vCastTop")
            ctx.vCastTop = float(tlxVal(v));
    });
}

void readGroupInfo(RunContext& ctx)
{
    QString listing = XMLGetNodes(ctx, "group_info");
    if (SectionListingFails("group_info", listing))
        return;
    listing.remove("GroupOption", Qt::CaseInsensitive);
    for (const QString& line : listing.split("\r\n")) {
        if (line.isEmpty())
            continue;
        const qsizetype bar = line.indexOf('|');
        if (bar < 0)
            Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
        const int n = int(tlxVal(line.left(bar)));
        VoteOption& option = ctx.voteOptions(n - ctx.startFrom);
        option.isGroupOption = true;
        option.groupOptionName = line.mid(bar + 1);
    }
}

void readCorrectAnswerValues(RunContext& ctx, const QString& value)
{
    if (ctx.voteOptions.empty())
        return;
    const QStringList items = value.split('|');
    double highest = 0;
    int highestIndex = 0;
    for (int i = 0; i < items.size() && i <= ctx.voteOptions.ubound(); ++i) {
        VoteOption& option = ctx.voteOptions(i);
        option.value = tlxVal(items[i]);
        option.isHighest = false;
        if (option.value > highest) {
            highest = option.value;
            highestIndex = i;
        }
    }
    ctx.voteOptions(highestIndex).isHighest = true;
}

void readCorrectAnswer(RunContext& ctx, const QString& value)
{
    const QStringList items = value.split('|');
    if (items.size() > ctx.voteOptions.size())
        ctx.voteOptions.redimPreserve(items.size() - 1);
    for (const QString& item : items) {
        if (item.isEmpty())
            continue;
        const int n = int(tlxVal(item));
        if (n >= 0 && n <= ctx.voteOptions.ubound())
            ctx.voteOptions(n).isCorrect = true;
    }
}

void readQuizInfo(RunContext& ctx)
{
    readSection(ctx, "quiz_info", [&](const QString& k, const QString& v) {
        if (k == "CorrectAnswerStyle") {
            ctx.CorrectAnswerStyle = CInt(v);
            if (ctx.CorrectAnswerStyle == 0 && !chartReader)
                ctx.CorrectAnswerStyle = 1;
        } else if (k == "haveTick") {
            ctx.haveTick = CInt(v);
        } else if (k == "tickColour") {
            ctx.tickColour = CLng(v);
        } else if (k == "FreeTextTopX") {
            // Shares its store with NumberDecimalPlaces on purpose: the later key wins.
            ctx.NumberDecimalPlaces = CInt(v);
        } else if (k == "FreeOnlyShowMatching") {
            ctx.FreeOnlyShowMatching = CInt(v);
        } else if (k == "OnlyHighlightHighest") {
            ctx.OnlyHighlightHighest = CBool(v);
        } else if (k == "correctAnswer") {
            readCorrectAnswer(ctx, v);
        } else if (k == "correctAnswerValues") {
            readCorrectAnswerValues(ctx, v);
        }
    });
}

void readGraphInfo(RunContext& ctx)
{
    readSection(ctx, "graph_info", [&](const QString& k, const QString& v) {
        if (k == "GraphType")
            ctx.GraphType = CInt(v);
        else if (k == "GraphPlotting")
            ctx.GraphPlotting = 0; // the key's presence alone turns the growing animation off
        else if (k == "GrowSpeed")
            ctx.GrowSpeed = CInt(v);
        else if (k == "AspectRatio")
            ctx.AspectRatio = CInt(v);
        else if (k == "ArrowLength")
            ctx.ArrowLength = CInt(v);
        else if (k == "PieFocus")
            ctx.PieFocus = CBool(v);
        else if (k == "ShowVoteOptionLabels")
            ctx.ShowVoteOptionLabels = CBool(v);
        else if (k == "BarsPerPage")
            ctx.BarsPerPage = CInt(v);
        else if (k == "BarSortOrder")
            ctx.BarSortOrder = CInt(v);
        else if (k == "InvertScale")
            ctx.InvertScale = CBool(v);
        else if (k == "GradientColourShow")
            ctx.GradientColourShow = CBool(v);
        else if (k == "GradientColour")
            ctx.GradientColour = CLng(v);
        else if (k == "GradientDirection")
            ctx.GradientDirection = CInt(v);
        else if (k == "ShowGraphs")
            ctx.ShowGraphs = CBool(v);
        else if (k == "PPTColourScheme")
            ctx.PPTColourScheme = CBool(v);
    });
    // Charts of a live vote are never sorted; a reshown chart keeps its question's order.
    if (!chartReader)
        ctx.BarSortOrder = 0;
}

void readGraphOutline(RunContext& ctx)
{
    readSection(ctx, "GraphOutline", [&](const QString& k, const QString& v) {
        if (k == "Visible")
            ctx.GraphOutline.Visible = CBool(v);
        else if (k == "Colour")
            ctx.GraphOutline.Colour = CLng(v);
        else if (k == "FillStyle")
            ctx.GraphOutline.FillStyle = CInt(v);
    });
}

// The three-digit number in a key or line: an index into a list the document fills.
// Read as a number, "1e9" would ask for more memory than any chart needs.
int keyIndex(const QString& digits)
{
    const double n = tlxVal(digits);
    if (!(n >= 0 && n <= 999))
        Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return int(n);
}

// BarColours, BarSpacing and BarDepth: numbered elements whose word is taken out of the
// whole listing, values included.
template <class T, class Convert>
void readNumberedList(RunContext& ctx, const QString& section, const QString& word, VbArray<T>& array,
                      Convert convert)
{
    QString listing = XMLGetNodes(ctx, section);
    if (SectionListingFails(section, listing))
        return;
    listing.remove(word, Qt::CaseInsensitive);
    const QStringList lines = listing.split("\r\n");
    if (lines.size() > array.size())
        array.redimPreserve(std::max(array.ubound(), keyIndex(lines.last().left(3))));
    for (const QString& line : lines) {
        if (line.isEmpty())
            continue;
        const int index = keyIndex(line.left(3));
        const qsizetype bar = line.indexOf('|');
        if (bar < 0)
            Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
        array(index) = convert(line.mid(bar + 1));
    }
}

void readChartDimensions(RunContext& ctx)
{
    readSection(ctx, "ChartDimensions", [&](const QString& k, const QString& v) {
        if (k.size() < 3)
            return;
        const int n = keyIndex(k.right(3));
        const QString field = k.left(k.size() - 3);
        if (n > ctx.ChartDimensions.ubound())
            ctx.ChartDimensions.redimPreserve(n);
        ChartDimension& d = ctx.ChartDimensions(n);
        if (field == "MarginTop")
            d.MarginTop = CInt(v);
        else if (field == "MarginLeft")
            d.MarginLeft = CInt(v);
        else if (field == "MarginBottom")
            d.MarginBottom = CInt(v);
        else if (field == "MarginRight")
            d.MarginRight = CInt(v);
        else if (field == "PositionTop")
            d.PositionTop = float(tlxVal(v));
        else if (field == "PositionLeft")
            d.PositionLeft = float(tlxVal(v));
    });
}

void readFont(RunContext& ctx)
{
    readSection(ctx, "Font", [&](const QString& k, const QString& v) {
        FontSettings& f = ctx.Font;
        if (k == "Colour") {
            f.Colour = CLng(v);
            f.Colour2 = f.Colour;
        } else if (k == "Name") {
            f.Name = v;
        } else if (k == "Bold") {
            f.Bold = v;
        } else if (k == "Italic") {
            f.Italic = CBool(v);
        } else if (k == "Underline") {
            f.Underline = CBool(v);
        } else if (k == "StrikeThrough") {
            f.StrikeThrough = CBool(v);
        } else if (k == "Size") {
            f.Size = CInt(v);
        } else if (k == "ShadowColour") {
            f.ShadowColour = CLng(v);
        } else if (k == "ShadowVisible") {
            f.ShadowVisible = CBool(v);
        }
    });
    if (ctx.Font.Name.isEmpty())
        ctx.Font.Name = QStringLiteral("Arial");
}

void readVArea(RunContext& ctx)
{
    if (ctx.vArea.empty())
        ctx.vArea.redim(0);
    readSection(ctx, "vArea", [&](const QString& k, const QString& v) {
        VArea& a = ctx.vArea(0);
        if (k == "Left")
            a.Left = float(tlxVal(v));
        else if (k == "Top")
            a.Top = float(tlxVal(v));
        else if (k == "Width")
            a.Width = float(tlxVal(v));
        else if (k == "Height")
            a.Height = float(tlxVal(v));
    });
}

void readRankVote(RunContext& ctx)
{
    readSection(ctx, "rank_vote", [&](const QString& k, const QString& v) {
        if (k == "NumberRankVotes") {
            ctx.NumberRankVotes = CInt(v);
            ctx.RankPosition.redim(ctx.NumberRankVotes - 1);
        } else if (k == "BarVerticalSpacing") {
            ctx.BarVerticalSpacing = CSng(v);
        } else if (k == "BarColour") {
            ctx.BarColour = CLng(v);
        } else if (k == "rankDisplayOptions") {
            ctx.rankDisplayOptions = CInt(v);
        } else if (k == "HighlightColour") {
            ctx.HighlightColour = CLng(v);
        } else if (k == "HighlightRank") {
            ctx.HighlightRank = CInt(v);
        } else if (k == "MarkerColour") {
            ctx.MarkerColour = CLng(v);
        } else if (k == "MarkerCharacter") {
            ctx.MarkerCharacter = CInt(v);
        } else if (k.startsWith("RankPosition") && k.size() >= 16) {
            const QChar letter = k[12];
            // Items are numbered from 1; 0 and items beyond the count are not this reader's.
            const int n = int(tlxVal(k.mid(13, 3)));
            if (n >= 1 && chartReader && n > ctx.NumberRankVotes) {
                // A reshown rating chart honours every item its document places.
                ctx.NumberRankVotes = short(n);
                ctx.RankPosition.redimPreserve(n - 1);
            }
            if (n < 1 || n > ctx.NumberRankVotes || n - 1 > ctx.RankPosition.ubound())
                return;
            RankPositionRecord& r = ctx.RankPosition(n - 1);
            const float value = float(tlxVal(v));
            if (letter == 'X')
                r.X = value;
            else if (letter == 'Y')
                r.Y = value;
            else if (letter == 'L')
                r.L = value;
            else if (letter == 'W')
                r.W = value;
        }
    });
}

void readTextVote(RunContext& ctx)
{
    ctx.textPosition.redim(0, 0);
    readSection(ctx, "text_vote", [&](const QString& k, const QString& v) {
        if (k == "NumberTextVotes") {
            ctx.NumberTextVotes = CInt(v);
            // As many as the keys' three digits can name, no more.
            if (ctx.NumberTextVotes > 1000 || ctx.optionCount > 1000)
                Raise(ErrNo::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
            ctx.textPosition.redim(ctx.NumberTextVotes - 1, ctx.optionCount - 1);
        } else if (k == "HorizontalSpacing") {
            ctx.HorizontalSpacing = CInt(v);
        } else if (k == "VerticalSpacing") {
            ctx.VerticalSpacing = CInt(v);
        } else if (k == "HighlightColour") {
            ctx.HighlightColour = CLng(v);
        } else if (k == "HighlightRank") {
            ctx.HighlightRank = CInt(v);
        } else if (k == "MarkerColour") {
            ctx.MarkerColour = CLng(v);
        } else if (k == "MarkerCharacter") {
            ctx.MarkerCharacter = CInt(v);
        } else if (k.startsWith("textPosition") && k.size() >= 19) {
            const QChar letter = k[12];
            const int item = keyIndex(k.mid(13, 3));
            const int option = keyIndex(k.mid(16, 3));
            // The document's counts are only a starting point: a key beyond them raises them.
            int rows = ctx.textPosition.ubound1();
            int cols = ctx.textPosition.ubound2();
            if (item > rows) {
                ++ctx.NumberTextVotes;
                rows = item;
            }
            if (option > cols) {
                ++ctx.optionCount;
                cols = option;
            }
            if (rows != ctx.textPosition.ubound1() || cols != ctx.textPosition.ubound2())
                ctx.textPosition.redimPreserve(rows, cols);
            TextPositionCell& cell = ctx.textPosition(item, option);
            if (letter == 'X')
                cell.X = CDbl(v);
            else if (letter == 'Y')
                cell.Y = CDbl(v);
        }
    });
}

void readSeriesVote(RunContext& ctx)
{
    readSection(ctx, "series_vote", [&](const QString& k, const QString& v) {
        if (k == "seriesvoteIterationText") {
            ctx.seriesvoteIterationText = v;
        } else if (k == "Iterations") {
            ctx.Iterations = CInt(v);
        } else if (k == "DisplayBy") {
            ctx.DisplayBy = CInt(v);
        } else if (k == "Exclusive") {
            ctx.Exclusive = CBool(v);
        } else if (k == "SeriesPercentVsTotalKpads") {
            ctx.SeriesPercentVsTotalKpads = CBool(v);
        } else if (k == "RequireAll") {
            ctx.RequireAll = CBool(v);
        } else if (k == "UseWeighting") {
            ctx.UseWeighting = CInt(v);
        } else if (k == "UseUserWeighting") {
            ctx.UseUserWeighting = CInt(v);
        } else if (k == "MaxPointsAvailable") {
            ctx.MaxPointsAvailable = CInt(v);
        } else if (k == "MaxPointsPerItem") {
            ctx.MaxPointsPerItem = CInt(v);
        } else if (k == "SeriesWeighting") {
            ctx.SeriesWeighting.redim(9);
            const QStringList items = v.split('|');
            for (int i = 0; i < items.size() && i <= 9; ++i)
                ctx.SeriesWeighting(i) = tlxVal(items[i]);
        }
    });
}

} // namespace

bool SectionListingFails(const QString& section, const QString& listing)
{
    if (section == "vote_info")
        return listing.left(6) == "Err - ";
    if (listing.startsWith("Err - "))
        return true;
    // The values are what is tested, not the key names: `NumberRankVotes` itself holds "err".
    for (const QString& line : listing.split("\r\n")) {
        const qsizetype bar = line.indexOf('|');
        if (bar >= 0 && line.mid(bar + 1).contains("err", Qt::CaseInsensitive))
            return true;
    }
    return false;
}

void LoadChartXML(RunContext& ctx, long slideID)
{
    const char* P = "LoadChartXML";
    Guarded(ctx, "Reshow", P, true, [&] {
        host::Slide* slide = ctx.oPres->GetSlides()->FindBySlideID(slideID);
        const QString xml = slide->GetTags()->Item(QStringLiteral("TLXVOTE"));
        if (xml.isEmpty())
            return;
        settingsDocOf(ctx).loadXML(xml);
        chartReader = true;
        struct Off {
            ~Off() { chartReader = false; }
        } off;
        auto timed = [&](const QString& text, const std::function<void()>& read) {
            const qint64 t0 = ctx.clock->perfCounter();
            read();
            WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), "LoadChartXML: " + text + ": ",
                          "Reshow", P);
        };
        // Only what draws the chart: a count-down's time, the window and the areas stay the reshow's.
        readSection(ctx, "vote_info", [&](const QString& k, const QString& v) {
            if (k == "options")
                ctx.optionCount = CInt(v);
            else if (k == "Abstain")
                ctx.allowAbstain = CBool(v);
            else if (k == "startFrom")
                ctx.startFrom = CInt(v);
            else if (k == "showAsPercentOrNumber")
                ctx.showAsPercentOrNumber = CInt(v);
            else if (k == "showAsBothStackedOrSide")
                ctx.showAsBothStackedOrSide = CInt(v);
            else if (k == "PercentDP")
                ctx.PercentDP = std::trunc(tlxVal(v));
            else if (k == "vType")
                ctx.vType = CInt(v);
            else if (k == "ParticipantWeighting")
                ctx.ParticipantWeighting = CBool(v);
        });
        readGroupInfo(ctx);
        timed("<quiz_info>", [&] { readQuizInfo(ctx); });
        timed("<graph_info>", [&] {
            readGraphInfo(ctx);
            readGraphOutline(ctx);
            readNumberedList(ctx, "BarColours", "Bar", ctx.optionColours, [](const QString& v) { return CLng(v); });
            readNumberedList(ctx, "BarSpacing", "Spacing", ctx.BarSpacing, [](const QString& v) { return tlxVal(v); });
            readChartDimensions(ctx);
            readFont(ctx);
        });
        timed("<rank_vote>", [&] { readRankVote(ctx); });
        timed("<text_vote>", [&] { readTextVote(ctx); });
        timed("<series_vote>", [&] { readSeriesVote(ctx); });
    });
}

void ReadSettingsSection(RunContext& ctx, const QString& section,
                         const std::function<void(const QString&, const QString&)>& handle)
{
    readSection(ctx, section, handle);
}

void SetVarsFromXML(RunContext& ctx)
{
    Guarded(ctx, kModule, "SetVarsFromXML", true, [&] {
        qint64 mark = ctx.clock->perfCounter();
        // The older form kept the display mode in a section of its own; it moves on read.
        const QString older = XMLGetNodes(ctx, "quilmark_info");
        if (!SectionListingFails("quilmark_info", older)) {
            for (const QString& line : older.split("\r\n"))
                if (line.startsWith("Quilmark_Display|"))
                    ctx.Quilmark_Display = CInt(line.mid(17));
            XMLSetSingleNode(ctx, "vote_info", "Quilmark_Display", int(ctx.Quilmark_Display));
            XMLNodeClear(ctx, "quilmark_info", true);
        }
        logSection(ctx, mark, "Start Function");
        readFileInfo(ctx);
        logSection(ctx, mark, "<file_info>");
        readVoteInfo(ctx);
        readVCast(ctx);
        logSection(ctx, mark, "<vote_vote>");
        readGroupInfo(ctx);
        logSection(ctx, mark, "<group_vote>");
        readQuizInfo(ctx);
        logSection(ctx, mark, "<quiz_vote>");
        readGraphInfo(ctx);
        readGraphOutline(ctx);
        readNumberedList(ctx, "BarColours", "Bar", ctx.optionColours, [](const QString& v) { return CLng(v); });
        readNumberedList(ctx, "BarSpacing", "Spacing", ctx.BarSpacing, [](const QString& v) { return tlxVal(v); });
        readNumberedList(ctx, "BarDepth", "Depth", ctx.BarDepth,
                         [](const QString& v) {
                             const qint32 depth = TruncToLong(tlxVal(v));
                             if (depth < std::numeric_limits<short>::min() || depth > std::numeric_limits<short>::max())
                                 Raise(ErrNo::Overflow, QStringLiteral("Overflow"));
                             return short(depth);
                         });
        readChartDimensions(ctx);
        readFont(ctx);
        logSection(ctx, mark, "<graph_info>");
        readVArea(ctx);
        logSection(ctx, mark, "<vArea>");
        VisibleChartCheck(ctx);
        readRankVote(ctx);
        logSection(ctx, mark, "<rank_vote>");
        readTextVote(ctx);
        logSection(ctx, mark, "<text_vote>");
        readSeriesVote(ctx);
        logSection(ctx, mark, "<series_vote>");
    });
}

namespace {

double roundTo(double v, int places)
{
    const double scale = std::pow(10.0, places);
    return std::nearbyint(v * scale) / scale;
}

// The shape of that name on the slide, asked of the host directly: a picture placed
// since the shape cache was filled must be seen.
host::Shape* liveShape(host::Slide* slide, const QString& name)
{
    return ShapeNamed(slide, name);
}

} // namespace

void MakePPTObjectPositionsMatch(RunContext& ctx, host::Shape* a, host::Shape* b, bool both)
{
    // The host rounds positions to its own unit; older hosts to 2 places, newer to whole points.
    const int places = int(std::trunc(tlxVal(ctx.oPPT->Version()))) < 12 ? 2 : 0;
    struct Field {
        double (host::Shape::*get)() const;
        void (host::Shape::*set)(double);
    };
    const Field fields[] = {{&host::Shape::Top, &host::Shape::SetTop},
                            {&host::Shape::Left, &host::Shape::SetLeft},
                            {&host::Shape::Width, &host::Shape::SetWidth},
                            {&host::Shape::Height, &host::Shape::SetHeight}};
    for (const Field& f : fields) {
        const double av = (a->*f.get)();
        if (roundTo((b->*f.get)(), places) != roundTo(av, places))
            (b->*f.set)(av);
        if (both && roundTo((b->*f.get)(), places) != roundTo((a->*f.get)(), places))
            (a->*f.set)((a->*f.get)());
    }
}

void VisibleChartCheck(RunContext& ctx)
{
    for (const QString& a : {ctx.arg1, ctx.arg2, ctx.arg3})
        if (a.toUpper() == "WIZARD")
            return;
    qint64 mark = ctx.clock->perfCounter();
    host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
    if (CheckForPPTShape(ctx, ctx.currentSlide, "tlx_answers-BAK") &&
        CheckForPPTShape(ctx, ctx.currentSlide, "tlx_answers"))
        MakePPTObjectPositionsMatch(ctx, slide->GetShapes()->Item("tlx_answers"),
                                    slide->GetShapes()->Item("tlx_answers-BAK"), true);
    logSection(ctx, mark, "<bak up answers text box>");

    host::Shape* chart = nullptr;
    if (host::Shape* live = liveShape(slide, "tallix chart")) {
        host::Shape* sampleBak = liveShape(slide, "tallix chart sample-BAK");
        if (sampleBak && sampleBak->Top() != live->Top() && int(std::trunc(tlxVal(ctx.oPPT->Version()))) != 12 &&
            !(slide->InteractiveSequencesCount() > 0))
            live->SetTop(sampleBak->Top());
        if (live->Visible())
            chart = live;
    }
    const auto firstVisible = [&](const QStringList& names) -> host::Shape* {
        for (const QString& n : names)
            if (host::Shape* s = liveShape(slide, n); s && s->Visible())
                return s;
        return nullptr;
    };
    if (!chart && ctx.vType == 2) {
        QStringList names;
        for (int i = 1; i <= 9; ++i)
            names << QStringLiteral("tallix chart %1").arg(i);
        chart = firstVisible(names);
    }
    if (!chart && ctx.GraphType == 7) {
        QStringList names;
        for (char c = 'A'; c <= 'Z'; ++c)
            names << QStringLiteral("tallix chart %1").arg(QChar(c));
        chart = firstVisible(names);
    }
    if (!chart)
        chart = liveShape(slide, "tallix chart sample");
    const QString backupName =
        ctx.arg1.toUpper() == "TLXRESHOW" ? QStringLiteral("tallix chart 0 sample-BAK") : QStringLiteral("tallix chart sample-BAK");
    if (!chart)
        chart = liveShape(slide, backupName);
    if (chart && ctx.vArea.ubound() >= 0) {
        const host::PageSetup page = ctx.oPres->GetPageSetup();
        VArea& area = ctx.vArea(0);
        area.Height = float(chart->Height() / page.SlideHeight);
        area.Width = float(chart->Width() / page.SlideWidth);
        area.Top = float(chart->Top() / page.SlideHeight);
        area.Left = float(chart->Left() / page.SlideWidth);
        if (host::Shape* backup = liveShape(slide, backupName); backup && backup != chart)
            MakePPTObjectPositionsMatch(ctx, chart, backup, true);
    }
    logSection(ctx, mark, "<Visible chart object on slide check>");
}

} // namespace tallix
