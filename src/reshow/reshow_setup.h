#pragma once
// A reshow slide's settings, the list of the deck's question slides its references are
// found in again, and where on the slide each chart goes.

#include <QString>
#include <QStringList>

namespace tallix {

struct RunContext;

// Reads the loaded reshow document: filter join, labels, the question references, the
// legend and title, and per chart its question, filter and area.
void SetReshowVarsFromXML(RunContext& ctx);
// One entry per question slide: identity "000"|QID|^labels^. With `keepFresh`, a list in
// `tlx_SlideInfo` younger than 900 s of the run's clock is used as it stands.
void GetSlideInfo(RunContext& ctx, bool keepFresh = false);
// A chart's area from a shape already on the slide: the previous showing's chart, or its
// placeholder.
void SetVareaFromSlide(RunContext& ctx);

} // namespace tallix
