#include <QCoreApplication>
#include <gtest/gtest.h>

#include "support/error_reports.h"

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    tallix::testing::WatchErrorReports();
    return RUN_ALL_TESTS();
}
