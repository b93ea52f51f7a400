#pragma once
// The option colours and the marks' font, taken from the default file and from the
// presentation.

#include <QString>

namespace tallix {

struct RunContext;

void LoadDefaultColours(RunContext& ctx, short fromPresentation);
short SetColoursFromPPT(RunContext& ctx);
void SetFontFromPPT(RunContext& ctx);

} // namespace tallix
