#include "qt_dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tallix {

namespace {

struct ButtonSet {
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton;
};

ButtonSet buttonsFor(int style)
{
    switch (style & 7) {
    case MsgBoxStyle::OKCancel: return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok};
    case MsgBoxStyle::AbortRetryIgnore:
        return {QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore, QMessageBox::Abort};
    case MsgBoxStyle::YesNoCancel: return {QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes};
    case MsgBoxStyle::YesNo: return {QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes};
    case MsgBoxStyle::RetryCancel: return {QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Retry};
    default: return {QMessageBox::Ok, QMessageBox::Ok};
    }
}

QMessageBox::Icon iconFor(int style)
{
    switch (style & 0x70) {
    case MsgBoxStyle::Critical: return QMessageBox::Critical;
    case MsgBoxStyle::Question: return QMessageBox::Question;
    case MsgBoxStyle::Exclamation: return QMessageBox::Warning;
    case MsgBoxStyle::Information: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

int resultOf(QMessageBox::StandardButton b)
{
    switch (b) {
    case QMessageBox::Cancel: return MsgBoxResult::Cancel;
    case QMessageBox::Abort: return MsgBoxResult::Abort;
    case QMessageBox::Retry: return MsgBoxResult::Retry;
    case QMessageBox::Ignore: return MsgBoxResult::Ignore;
    case QMessageBox::Yes: return MsgBoxResult::Yes;
    case QMessageBox::No: return MsgBoxResult::No;
    default: return MsgBoxResult::OK;
    }
}

void keepOnTop(QWidget& w)
{
    // A box must stand above the show and the votes-cast window, which are topmost too.
    w.setWindowFlag(Qt::WindowStaysOnTopHint, true);
}

} // namespace

int QtDialogs::MsgBox(const QString& prompt, int style, const QString& title)
{
    const ButtonSet set = buttonsFor(style);
    QMessageBox box(iconFor(style), title, prompt, set.buttons);
    box.setDefaultButton(set.defaultButton);
    keepOnTop(box);
    box.exec();
    const auto clicked = box.standardButton(box.clickedButton());
    // Closing a box without a button answers Cancel where it has one, else its first button.
    if (clicked == QMessageBox::NoButton)
        return set.buttons.testFlag(QMessageBox::Cancel) ? MsgBoxResult::Cancel : resultOf(set.defaultButton);
    return resultOf(clicked);
}

QString QtDialogs::InputBox(const QString& prompt, const QString& title, const QString& defaultText)
{
    QInputDialog dlg;
    dlg.setWindowTitle(title);
    dlg.setLabelText(prompt);
    dlg.setTextValue(defaultText);
    keepOnTop(dlg);
    return dlg.exec() == QDialog::Accepted ? dlg.textValue() : QString();
}

void QtDialogs::ErrorDialog(const QString& title, const QString& report, const QString& exeName,
                            const QString& helpContext)
{
    QDialog dlg;
    dlg.setWindowTitle(title + exeName);
    keepOnTop(dlg);
    auto* layout = new QVBoxLayout(&dlg);
    auto* heading = new QLabel(QStringLiteral("<b>%1</b> met an unexpected problem. The details below have been kept "
                                              "in Err.log.")
                                   .arg(exeName.toHtmlEscaped()));
    heading->setWordWrap(true);
    layout->addWidget(heading);
    auto* text = new QPlainTextEdit(report);
    text->setReadOnly(true);
    text->setMinimumSize(520, 280);
    layout->addWidget(text);
    if (helpContext != QLatin1String("0") && !helpContext.isEmpty())
        layout->addWidget(new QLabel(QStringLiteral("Help context: %1").arg(helpContext)));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dlg, &QDialog::accept);
    layout->addWidget(buttons);
    dlg.exec();
}

void QtDialogs::RestorePointer()
{
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

} // namespace tallix
