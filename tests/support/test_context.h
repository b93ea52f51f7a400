#pragma once
// A run context for tests of vote logic, over the test services.

#include "support/test_services.h"
#include "vote/run_context.h"

namespace tallix::testing {

struct TestRun {
    TestServices t;
    RunContext ctx;

    TestRun() { static_cast<Services&>(ctx) = t.s; }
    QString errLog() const { return TestServices::read(t.path("appdata/tallix/Err.log")); }
};

} // namespace tallix::testing
