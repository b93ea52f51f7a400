#pragma once
// Active keypads and the small records a run leaves in presentation tags.

#include <QString>

namespace tallix {

struct RunContext;

// The presentation's `ActiveKeypads` tag as it stands.
QString ActiveKeypadsTag(RunContext& ctx);
void ReadActiveKeypads(RunContext& ctx);
void WriteActiveKeypads(RunContext& ctx, short& allKeypads);

} // namespace tallix
