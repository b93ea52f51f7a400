#pragma once
// The chart seems to stand on the slide: a picture of the show's window is taken once per
// vote, before any window of ours lies over it, and each chart element gets the piece of
// it that lies behind it as its panel background.

#include <QImage>
#include <QRect>

namespace tallix {

struct RunContext;
class FrmTChart;

// The show's picture for this run; null when there was no display to read.
QImage& backgroundPicture();

void GrabBackgroundClip(RunContext& ctx);
void RefreshTChart(RunContext& ctx, FrmTChart& form, short sample, short oneElement, short elementIndex,
                   short skipClip);

// The clip of `area` (pixels, relative to the picture) fitted inside a picture of `cell`
// size: cut down at the right and bottom, never below 1 pixel; an empty area takes the cell.
QRect FitClip(QRect area, QSize cell);

} // namespace tallix
