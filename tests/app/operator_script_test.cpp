#include "app/ui/operator_script.h"
#include "support/qt_print.h"

#include <gtest/gtest.h>

using namespace tallix;

namespace {

TEST(OperatorScript, ParsesKeysClicksAndModifiers)
{
    QList<OperatorAction> actions;
    QString error;
    ASSERT_TRUE(ParseOperatorScript("# rehearsal\n0.5 key 3\n1 key Space\n2.25 key Ctrl+Q\n3 key Alt+F1\n4 click\n"
                                    "5 key Q\n",
                                    actions, error))
        << error.toStdString();
    ASSERT_EQ(actions.size(), 6);
    EXPECT_EQ(actions[0].key, Qt::Key_3);
    EXPECT_EQ(actions[0].text, "3");
    EXPECT_DOUBLE_EQ(actions[1].at, 1);
    EXPECT_EQ(actions[1].key, Qt::Key_Space);
    EXPECT_EQ(actions[2].key, Qt::Key_Q);
    EXPECT_EQ(actions[2].modifiers, Qt::ControlModifier);
    EXPECT_EQ(actions[2].text, QString(QChar(17)));
    EXPECT_EQ(actions[3].modifiers, Qt::AltModifier);
    EXPECT_TRUE(actions[4].click);
    EXPECT_EQ(actions[5].modifiers, Qt::ShiftModifier);
}

struct BadLine {
    const char* script;
    const char* error;
};
class BadScripts : public ::testing::TestWithParam<BadLine> {};

TEST_P(BadScripts, SayWhichLineAndWhy)
{
    QList<OperatorAction> actions;
    QString error;
    EXPECT_FALSE(ParseOperatorScript(GetParam().script, actions, error));
    EXPECT_TRUE(error.startsWith(GetParam().error)) << error.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Lines, BadScripts,
                         ::testing::Values(BadLine{"soon key q", "line 1: expected a time"},
                                           BadLine{"1 key Space\n2 key Hyper", "line 2: unknown key"},
                                           BadLine{"1 press q", "line 1: expected"},
                                           BadLine{"-1 click", "line 1: expected a time"}));

} // namespace
