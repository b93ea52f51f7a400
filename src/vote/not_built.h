#pragma once
// Procedures whose behaviour has not been built yet exist under their final names; each
// says so once in the debug log and returns its default, so callers go on as they will.

#include "foundation/logs.h"
#include "foundation/services.h"

namespace tallix {

inline void NotBuiltYet(Services& s, const char* module, const char* procedure)
{
    WriteDebugLog(s, 0, QStringLiteral("not built yet"), QString::fromLatin1(module), QString::fromLatin1(procedure));
}

} // namespace tallix
