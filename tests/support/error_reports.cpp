#include "support/error_reports.h"

#include "foundation/error_report.h"

#include <gtest/gtest.h>

namespace tallix::testing {

namespace {
ExpectErrorReports* g_innermost = nullptr;
}

ExpectErrorReports::ExpectErrorReports() : outer_(g_innermost) { g_innermost = this; }

ExpectErrorReports::~ExpectErrorReports() { g_innermost = outer_; }

void RecordErrorReport(const QString& report)
{
    if (g_innermost) {
        g_innermost->reports_ << report;
        return;
    }
    ADD_FAILURE() << "unexpected error report:\n" << QString(report).replace("\r\n", "\n").toStdString();
}

void WatchErrorReports() { SetErrorReportObserver(&RecordErrorReport); }

} // namespace tallix::testing
