#pragma once
// The option colours and the marks' font, taken from the default file and from the
// presentation, so that a chart wears the deck's colours.

#include <QString>

namespace tallix {

struct RunContext;

// Colour of option `i` among `optionColours`: the option itself up to 10, then cycling
// through 1..9, 0 for every further ten.
int OptionColourIndex(int option);

void LoadDefaultColours(RunContext& ctx, short fromPresentation);
short SetColoursFromPPT(RunContext& ctx);
void SetFontFromPPT(RunContext& ctx);

// WCAG contrast ratio of two blue-green-red colours, 1 (none) to 21 (black on white).
double ContrastRatio(long bgr1, long bgr2);

// The host's colour order for its version: theme colours from 12 on, scheme colours before.
QString HostColourOrder(const QString& version);

} // namespace tallix
