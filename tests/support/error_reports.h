#pragma once
// An error report that a test did not ask for fails that test, at the moment it is made,
// with the report's text. A test that provokes failures on purpose holds an
// ExpectErrorReports for as long as they may come, and can look at what came.

#include <QString>
#include <QStringList>

namespace tallix::testing {

class ExpectErrorReports {
public:
    ExpectErrorReports();
    ~ExpectErrorReports();
    ExpectErrorReports(const ExpectErrorReports&) = delete;
    ExpectErrorReports& operator=(const ExpectErrorReports&) = delete;

    int count() const { return int(reports_.size()); }
    const QStringList& reports() const { return reports_; }
    // The report text of every report so far, for a single contains() check.
    QString all() const { return reports_.join('\n'); }

private:
    friend void RecordErrorReport(const QString& report);
    ExpectErrorReports* outer_;
    QStringList reports_;
};

// Installed by both test mains.
void WatchErrorReports();
void RecordErrorReport(const QString& report);

} // namespace tallix::testing
