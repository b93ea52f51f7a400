#include "error_report.h"

#include "clock.h"
#include "dialogs.h"
#include "environment.h"
#include "numbers.h"
#include "safe_write.h"
#include "services.h"

#include <QDir>
#include <QFile>
#include <QLocale>

#include <cstdio>

namespace tallix {

namespace {
const QString CRLF = QStringLiteral("\r\n");
const QString kSeparator = QString(65, '-');
ErrorReportObserver g_observer = nullptr;
} // namespace

void SetErrorReportObserver(ErrorReportObserver observer)
{
    g_observer = observer;
}

long clsError::ErrLineNumber() const
{
    return long(tlxVal(lineNumber_));
}

void clsError::StoreErrInfo(const VbError& error, const QDateTime& moment)
{
    moment_ = moment;
    number_ = error.number();
    description_ = error.description();
    helpFile_.clear();
    helpContext_ = 0;
}

void clsError::StoreAppInfo(const QString& objectName, const QString& procedureName, const QString& lineNumber,
                            const QString& extraInfo, short showUser)
{
    objectName_ = objectName;
    procedureName_ = procedureName;
    lineNumber_ = lineNumber;
    extraInfo_ = extraInfo;
    showUser_ = showUser;
}

QString clsError::composeReport(const Services& s) const
{
    const QLocale en(QLocale::English);
    QString r;
    r += "Date: " + en.toString(moment_.date(), "dd-MMM-yyyy") + CRLF;
    r += "Time: " + moment_.time().toString("hh:mm:ss") + CRLF + CRLF;
    r += "Number: " + QString::number(number_) + CRLF;
    r += "Description: " + description_ + CRLF + CRLF;
    r += "Module: " + objectName_ + CRLF;
    r += "Procedure: " + procedureName_ + CRLF;
    r += "Line: " + lineNumber_ + CRLF + CRLF;
    if (!showUser_)
        r += "Message Supressed: True" + CRLF;
    r += "App: " + s.app.exeName + CRLF;
    r += "Version: " + QString::number(s.app.major) + "." + QString::number(s.app.minor) + "." +
         QString::number(s.app.revision) + CRLF;
    r += "Location: " + s.app.folder;
    if (!extraInfo_.isEmpty())
        r += CRLF + CRLF + "Extra Info: " + CRLF + CRLF + extraInfo_;
    return r;
}

QString ErrLogPath(Services& s)
{
    QString folder = s.app.folder;
    if (s.env.isSet("APPDATA")) {
        folder = JoinPath(s.env.perUserBase(), "\\tallix");
        QDir().mkpath(folder);
    }
    return JoinPath(folder, "\\Err.log");
}

void clsError::Show(Services& s)
{
    // The show hides and confines the pointer; a report must give it back first.
    if (s.dialogs)
        s.dialogs->RestorePointer();
    const QString report = composeReport(s);
    if (g_observer)
        g_observer(report);

    if (showUser_ && s.dialogs) {
        if (description_.contains('~') && number_ == ErrNo::HostUnexpected) {
            s.dialogs->MsgBox("PowerPoint has encountered an unexpected error." + CRLF + CRLF +
                                  "Save your current work and restart PowerPoint." + CRLF + CRLF + CRLF +
                                  "Details: " + description_,
                              MsgBoxStyle::Exclamation, "Microsoft PowerPoint");
        } else {
            s.dialogs->ErrorDialog("An error has occurred: ", report, s.app.exeName, QString::number(helpContext_));
        }
    }

    const QString path = ErrLogPath(s);
    QString old;
    QFile in(path);
    if (in.open(QIODevice::ReadOnly))
        old = QString::fromUtf8(in.readAll());
    QString content = kSeparator + CRLF + report + CRLF + kSeparator + CRLF + CRLF + old;
    // The oldest reports fall off the end, possibly in mid-line.
    content.truncate(kErrLogLimit);
    const QString failure = SafeWriteFile(path, (content + CRLF).toUtf8());
    if (!failure.isEmpty())
        std::fprintf(stderr, "tallix: error report not kept: %s\n", qPrintable(failure));
}

VbError AsVbError(const std::exception_ptr& failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const VbError& e) {
        return e;
    } catch (const std::exception& e) {
        return VbError(440, QStringLiteral("Automation error: %1").arg(QString::fromLocal8Bit(e.what())));
    } catch (...) {
        return VbError(440, QStringLiteral("Automation error"));
    }
}

void ReportFailure(Services& s, const std::exception_ptr& failure, const QString& module, const QString& procedure,
                   bool showUser)
{
    const VbError e = AsVbError(failure);
    clsError report;
    report.StoreErrInfo(e, s.clock ? s.clock->now() : QDateTime::currentDateTime());
    report.StoreAppInfo(module, procedure, QString::number(e.line()), QString(), showUser ? -1 : 0);
    report.Show(s);
}

} // namespace tallix
