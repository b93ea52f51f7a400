#include "scalepad_votes.h"

#include "controller/comms.h"
#include "foundation/dialogs.h"
#include "foundation/environment.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/numbers.h"
#include "foundation/text_files.h"
#include "livewindow/keypads_not_voted.h"
#include "question/slide_objects.h"
#include "results/common_io.h"
#include "vote/run_context.h"
#include "vote/vote_close.h"
#include "vote/graph_runners.h"

#include <QFile>
#include <QRegularExpression>

#include <cmath>

namespace tallix {

namespace {

const char* kModule = "scalepad_votes";

void send(RunContext& ctx, const QString& text)
{
    if (ctx.comms)
        ctx.comms->SendCommandToController(text);
}

QStringList paragraphsOf(host::Shape* shape)
{
    QStringList out;
    if (!shape || !shape->HasTextFrame())
        return out;
    host::TextFrame* text = shape->GetTextFrame();
    for (int i = 1; i <= text->ParagraphCount(); ++i)
        out << text->Paragraph(i);
    return out;
}

// A person's rounding: halves away from zero.
double roundAway(double v, int places)
{
    const double scale = std::pow(10.0, places);
    return std::round(v * scale) / scale;
}

} // namespace

bool CheckTextVoteAgainstBannedList(RunContext& ctx, const QString& text)
{
    if (ctx.bannedWords.isEmpty())
        return true;
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words)
        if (ctx.bannedWords.contains(u'|' + word.toLower() + u'|', Qt::CaseInsensitive))
            return false;
    return true;
}

QString LoadBannedWords(RunContext& ctx)
{
    QFile f(JoinPath(ctx.env.perUserBase(), "\\tallix\\textVoteBannedWordList.txt"));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    QString list = DecodeUserText(f.readAll()).toLower();
    list.replace(QLatin1String("\r\n"), QLatin1String("|")).replace(u'\n', u'|').replace(u'\r', u'|');
    return u'|' + list + u'|';
}

double ConvertVoteToFormattedNumber(const RunContext& ctx, const QString& text)
{
    const double v = tlxVal(text);
    if (v == -1)
        return 0;
    if (ctx.NumberSigFigs < 1)
        return ctx.NumberDecimalPlaces >= 1 ? roundAway(v, ctx.NumberDecimalPlaces) : v;
    const double r = std::round(v);
    // The sign counts in the length, so a negative number keeps one figure fewer.
    const int length = QString::number(qint64(r)).size();
    const double p = std::trunc(std::pow(10.0, length - ctx.NumberSigFigs));
    return p > 0 ? std::round(r / p) * p : r;
}

short ScalepadSetup(RunContext& ctx)
{
    return Guarded(ctx, kModule, "ScalepadSetup", true, short(0), [&]() -> short {
        host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
        if (ctx.questionText.isEmpty())
            if (host::Shape* q = ShapeNamed(slide, QStringLiteral("tlx_question")); q && q->HasTextFrame())
                ctx.questionText = q->GetTextFrame()->Text();
        send(ctx, "PreVoteText=" + ctx.questionText);
        send(ctx, QStringLiteral("PostVotedText=Vote Sent"));
        host::Shape* answers = ShapeNamed(slide, QStringLiteral("tlx_answers"));
        if (!answers || ctx.FreeNumDisplay_Type == 2 || ctx.GraphType == 6)
            return 0;
        QStringList texts = paragraphsOf(answers);
        texts += paragraphsOf(ShapeNamed(slide, QStringLiteral("tlx_answers2")));
        const int n = int(texts.size());
        const bool rating = ctx.GraphType == 7;
        ctx.Points = rating ? n * ctx.optionCount : ctx.MaxPointsAvailable;
        // Outside a rating vote the one number "Allocation=" carries: a keypad's points per item.
        ctx.Allocation = rating ? ctx.optionCount : ctx.MaxPointsPerItem;
        ctx.Limits = ctx.Iterations;
        const bool numbered = answers->HasTextFrame() && answers->GetTextFrame()->ParagraphsNumbered();
        if (!numbered && (ctx.PriorMultiVote == 2 || ctx.controllerVoteType == "9"))
            for (int i = 0; i < n; ++i)
                texts[i] = QString::number(i + 1) + ". " + texts[i];
        QString text = texts.join(u'|');
        text.remove(QLatin1String("\r\n")).remove(u'\r');
        if (rating) {
            ctx.ratingVotes.redim(ctx.votes.ubound(), n, short(-1));
            ctx.Limits = n;
        }
        if (ctx.PriorMultiVote != 0 && !rating)
            send(ctx, "VoteText=" + text);
        send(ctx, "AnswerText=" + text);
        send(ctx, "Allocation=" + QString::number(ctx.Allocation));
        send(ctx, "Points=" + QString::number(ctx.Points));
        send(ctx, "Limits=" + QString::number(ctx.Limits));
        return short(n);
    });
}

void StartJolttextVote(RunContext& ctx)
{
    Guarded(ctx, kModule, "StartJolttextVote", true, [&] {
        host::Slide* slide = SlideAt(ctx, ctx.currentSlide);
        if ((ctx.FixedFree == 1 && ctx.Joltdisplay >= 1) || ctx.WLSShow)
            if (host::Shape* answers = ShapeNamed(slide, QStringLiteral("tlx_answers")))
                answers->SetVisible(false);
        ctx.bannedWords = LoadBannedWords(ctx);
        ResetVoteArrays(ctx);
        ctx.notVotedCount = 0;
        ctx.voteEnded = 0;
        ctx.responseList = QStringList{QString()};
        RefreshKeypadsNotVoted(ctx, false);
        if (ctx.FractionalJoltTEXT == 2) {
            // A voice vote is the controller's business from here.
            ctx.controllerVoteType = "9";
            ctx.startFrom = 0;
            ctx.optionCount = 1;
            slide->GetTags()->Add(QStringLiteral("Joltvoice"), QString::number(ctx.currentSlide));
            send(ctx, "StartFrom=" + QString::number(ctx.startFrom));
            send(ctx, "options=" + QString::number(ctx.optionCount));
            send(ctx, QStringLiteral("SHOWAUDIO"));
            FullShutDown(ctx);
            return;
        }
        ctx.controllerVoteType = "7";
        send(ctx, "VoteType=" + ctx.controllerVoteType);
        if (!(ctx.comms && ctx.comms->StartVote()))
            OfferStartRetry(ctx);
    });
}

} // namespace tallix
