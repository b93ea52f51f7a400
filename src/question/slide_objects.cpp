#include "slide_objects.h"

#include "foundation/clock.h"
#include "foundation/error_report.h"
#include "foundation/host.h"
#include "foundation/logs.h"
#include "foundation/numbers.h"
#include "vote/run_context.h"

namespace tallix {

namespace {
const char* const kModule = "Common_XML";
}

host::Slide* SlideAt(RunContext& ctx, int slideNumber)
{
    if (!ctx.oPres)
        Raise(ErrNo::ObjectVariableNotSet, "Object variable or With block variable not set");
    return ctx.oPres->GetSlides()->Item(slideNumber);
}

host::Shape* ShapeNamed(host::Slide* slide, const QString& name)
{
    host::Shapes* shapes = slide->GetShapes();
    for (int i = 1; i <= shapes->Count(); ++i)
        if (shapes->Item(i)->Name() == name)
            return shapes->Item(i);
    return nullptr;
}

void GetPPTShapes(RunContext& ctx, int slide, host::Presentation* presentation)
{
    Guarded(ctx, kModule, "GetPPTShapes", ctx.ShowErrors, [&] {
        const qint64 t0 = ctx.clock->perfCounter();
        host::Presentation* pres = presentation ? presentation : ctx.oPres;
        if (!pres)
            Raise(ErrNo::ObjectVariableNotSet, "Object variable or With block variable not set");
        host::Shapes* shapes = pres->GetSlides()->Item(slide)->GetShapes();
        VbArray<QString>& cache = ctx.pptShapeCache;
        cache.redim(shapes->Count());
        cache(0) = QString::number(slide);
        int used = 0;
        for (int i = 1; i <= shapes->Count(); ++i) {
            const QString name = shapes->Item(i)->Name();
            if (name.startsWith("tlx"))
                cache(++used) = name;
        }
        cache.redimPreserve(used);
        ctx.pptShapeCacheFilled = true;
        WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())), "", kModule, "GetPPTShapes");
    });
}

bool CheckForPPTShape(RunContext& ctx, int slide, const QString& name, host::Presentation* presentation,
                      bool refresh)
{
    return Guarded(ctx, kModule, "CheckForPPTShape", ctx.ShowErrors, false, [&] {
        const qint64 t0 = ctx.clock->perfCounter();
        int mode = 0;
        if (refresh || !ctx.pptShapeCacheFilled || ctx.pptShapeCache.ubound() < 0) {
            mode = 1;
            GetPPTShapes(ctx, slide, presentation);
        }
        if (ctx.pptShapeCache.ubound() >= 0 && tlxVal(ctx.pptShapeCache(0)) != slide) {
            mode += 2;
            GetPPTShapes(ctx, slide, presentation);
        }
        bool found = false;
        int i = 1;
        for (; i <= ctx.pptShapeCache.ubound(); ++i)
            if (ctx.pptShapeCache(i) == name) {
                found = true;
                break;
            }
        WriteDebugLog(ctx, float(CounterSeconds(ctx, t0, ctx.clock->perfCounter())),
                      QStringLiteral("CheckForPPTShape MODE=1 UB=%1 i=%2 getPPTShapeCount=%3")
                          .arg(ctx.pptShapeCache.ubound())
                          .arg(i)
                          .arg(mode),
                      kModule, "CheckForPPTShape");
        return found;
    });
}

int FindPowerPointShapeIndexByName(RunContext& ctx, int slide, const QString& name)
{
    return Guarded(ctx, kModule, "FindPowerPointShapeIndexByName", ctx.ShowErrors, 0, [&] {
        host::Shapes* shapes = SlideAt(ctx, slide)->GetShapes();
        for (int i = 1; i <= shapes->Count(); ++i)
            if (shapes->Item(i)->Name() == name)
                return i;
        return 0;
    });
}

QStringList SplitPPTTag(QString text, const QString& separator)
{
    while (text.endsWith("\r\n"))
        text.chop(2);
    while (text.endsWith('\r'))
        text.chop(1);
    while (text.endsWith('\n'))
        text.chop(1);
    if (separator != "\r\n" && separator != "\r" && separator != "\n")
        return text.split(separator);
    // Tags written on any kind of system split alike, whatever the caller asked for.
    if (text.contains("\r\n"))
        return text.split("\r\n");
    if (text.contains('\r'))
        return text.split('\r');
    if (text.contains('\n'))
        return text.split('\n');
    return text.split("\r\n");
}

void RevealAnswerShape(RunContext& ctx, const QString& shapeName, short /*returnToSlide*/)
{
    if (ctx.arg1 == QLatin1String("TLXGROUP"))
        return;
    if (host::Shape* s = ShapeNamed(SlideAt(ctx, ctx.currentSlide), shapeName))
        s->SetVisible(true);
}

} // namespace tallix
