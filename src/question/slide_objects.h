#pragma once
// The slide's agreed shapes and tags: finding them, and splitting tag values.

#include <QString>
#include <QStringList>

namespace tallix {

struct RunContext;
namespace host {
class Presentation;
class Shape;
class Slide;
} // namespace host

// The slide of that number in the run's presentation; raises like the host does.
host::Slide* SlideAt(RunContext& ctx, int slideNumber);
// The named shape of the slide, or null when there is none.
host::Shape* ShapeNamed(host::Slide* slide, const QString& name);

void GetPPTShapes(RunContext& ctx, int slide, host::Presentation* presentation = nullptr);
// Only names beginning "tlx" are kept in the cache, so any other name is false here.
bool CheckForPPTShape(RunContext& ctx, int slide, const QString& name, host::Presentation* presentation = nullptr,
                      bool refresh = false);
int FindPowerPointShapeIndexByName(RunContext& ctx, int slide, const QString& name);
QStringList SplitPPTTag(QString text, const QString& separator);
// Shows an answers shape during the show (a group run leaves it as it is); a missing one is
// passed over.
void RevealAnswerShape(RunContext& ctx, const QString& shapeName, short returnToSlide);

} // namespace tallix
