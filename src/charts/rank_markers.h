#pragma once
// The rank markers: one shape per rating item on the slide, "tallix rank marker 01" and on,
// that points at the item being rated while it is open.

#include <QString>

namespace tallix {

struct RunContext;

// The marker's character: a Windows-1252 code, as the glyph font numbers its glyphs.
QString MarkerGlyph(int code);
// `item` counts from 0. A slide without the marker, or a marker without text, is left alone.
void positionCurrentRankIndicator(RunContext& ctx, short item);
void hideCurrentRankIndicator(RunContext& ctx, short item);

} // namespace tallix
