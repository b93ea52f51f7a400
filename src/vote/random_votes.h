#pragma once
// Random votes for trying out a slide without an audience.

#include <QString>

namespace tallix {

struct RunContext;

void rndGenerator(RunContext& ctx);
// `r` from 0 up to 1; the vote as text.
QString RandomValue(RunContext& ctx, double r);
void LoadRandomTexts(RunContext& ctx);

} // namespace tallix
