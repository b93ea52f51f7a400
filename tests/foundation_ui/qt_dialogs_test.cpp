#include "foundation/ui/qt_dialogs.h"
#include "support/modal_closer.h"
#include "support/qt_print.h"

#include <QAbstractButton>
#include <QInputDialog>
#include <QMessageBox>

#include <gtest/gtest.h>

using namespace tallix;
using tallix::testing::AnswerNextModal;

namespace {

void clickButton(QWidget* w, QMessageBox::StandardButton which)
{
    auto* box = qobject_cast<QMessageBox*>(w);
    ASSERT_NE(box, nullptr);
    box->button(which)->click();
}

struct BoxCase {
    int style;
    QMessageBox::StandardButton click;
    int expected;
};

class MessageBoxes : public ::testing::TestWithParam<BoxCase> {};

TEST_P(MessageBoxes, AnswerInTheRuntimesNumbers)
{
    QtDialogs dialogs;
    QString seenTitle;
    AnswerNextModal([&](QWidget* w) {
        seenTitle = w->windowTitle();
        clickButton(w, GetParam().click);
    });
    EXPECT_EQ(dialogs.MsgBox("Retry?", GetParam().style, "tallix - vote"), GetParam().expected);
    EXPECT_EQ(seenTitle, "tallix - vote");
}

INSTANTIATE_TEST_SUITE_P(Styles, MessageBoxes,
                         ::testing::Values(BoxCase{MsgBoxStyle::OKOnly, QMessageBox::Ok, MsgBoxResult::OK},
                                           BoxCase{MsgBoxStyle::RetryCancel + MsgBoxStyle::Critical,
                                                   QMessageBox::Cancel, MsgBoxResult::Cancel},
                                           BoxCase{MsgBoxStyle::YesNo, QMessageBox::No, MsgBoxResult::No},
                                           BoxCase{MsgBoxStyle::AbortRetryIgnore, QMessageBox::Ignore,
                                                   MsgBoxResult::Ignore}));

TEST(InputBox, ReturnsTheTextOrEmptyWhenCancelled)
{
    QtDialogs dialogs;
    AnswerNextModal([](QWidget* w) {
        auto* dlg = qobject_cast<QInputDialog*>(w);
        ASSERT_NE(dlg, nullptr);
        dlg->setTextValue("12");
        dlg->accept();
    });
    EXPECT_EQ(dialogs.InputBox("Slide?", "Debug", "1"), "12");
    AnswerNextModal([](QWidget* w) { qobject_cast<QDialog*>(w)->reject(); });
    EXPECT_EQ(dialogs.InputBox("Slide?", "Debug", "1"), "");
}

TEST(ErrorDialog, ShowsTheReportModally)
{
    QtDialogs dialogs;
    QString title;
    AnswerNextModal([&](QWidget* w) {
        title = w->windowTitle();
        qobject_cast<QDialog*>(w)->accept();
    });
    dialogs.ErrorDialog("An error has occurred: ", "Number: 9", "vote", "0");
    EXPECT_EQ(title, "An error has occurred: vote");
}

} // namespace
