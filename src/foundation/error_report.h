#pragma once
// clsError: the system's one way of reporting the unexpected. A procedure body runs
// inside Guarded(); any failure becomes a report (shown or not, always kept in Err.log)
// and the caller goes on with the procedure's default result.

#include "vb_error.h"

#include <QDateTime>
#include <QString>

#include <exception>
#include <functional>
#include <type_traits>

namespace tallix {

struct Services;

class clsError {
public:
    long ErrLineNumber() const;
    void setErrLineNumber(long v) { lineNumber_ = QString::number(v); }
    long ErrNumber() const { return number_; }
    void setErrNumber(long v) { number_ = v; }
    QString ErrDescription() const { return description_; }
    void setErrDescription(const QString& v) { description_ = v; }
    QString ErrHelpFile() const { return helpFile_; }
    void setErrHelpFile(const QString& v) { helpFile_ = v; }
    long HelpContext() const { return helpContext_; }
    void setHelpContext(long v) { helpContext_ = v; }
    QString ObjectName() const { return objectName_; }
    void setObjectName(const QString& v) { objectName_ = v; }
    QString ProcedureName() const { return procedureName_; }
    void setProcedureName(const QString& v) { procedureName_ = v; }
    QString ExtraInfo() const { return extraInfo_; }
    void setExtraInfo(const QString& v) { extraInfo_ = v; }
    short ShowUser() const { return showUser_; }
    void setShowUser(short v) { showUser_ = v; }

    void StoreErrInfo(const VbError& error, const QDateTime& moment);
    void StoreAppInfo(const QString& objectName, const QString& procedureName, const QString& lineNumber,
                      const QString& extraInfo, short showUser);
    // Composes the report, tells the user if asked to, and prepends it to Err.log.
    void Show(Services& s);

    QString composeReport(const Services& s) const;

private:
    QString lineNumber_ = QStringLiteral("0");
    long number_ = 0;
    QString description_;
    QString helpFile_;
    long helpContext_ = 0;
    QString objectName_;
    QString procedureName_;
    QString extraInfo_;
    short showUser_ = 0;
    QDateTime moment_;
};

inline constexpr int kErrLogLimit = 50000;

// Told of every report as it is made; the tests fail on reports they did not expect.
using ErrorReportObserver = void (*)(const QString& report);
void SetErrorReportObserver(ErrorReportObserver observer);
QString ErrLogPath(Services& s);

// Turns whatever a body threw into the runtime's error: our own VbError as it is, a
// standard exception as an "automation error" with its message.
VbError AsVbError(const std::exception_ptr& failure);

// The handler every procedure of weight ends in.
void ReportFailure(Services& s, const std::exception_ptr& failure, const QString& module,
                   const QString& procedure, bool showUser);

template <class R, class Body>
R Guarded(Services& s, const char* module, const char* procedure, bool showUser, R defaultResult, Body&& body)
{
    try {
        return body();
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
        ReportFailure(s, std::current_exception(), QString::fromLatin1(module), QString::fromLatin1(procedure),
                      showUser);
        return defaultResult;
    }
}

template <class Body>
void Guarded(Services& s, const char* module, const char* procedure, bool showUser, Body&& body)
{
    try {
        body();
    } catch (const ProcessExit&) {
        throw;
    } catch (...) {
        ReportFailure(s, std::current_exception(), QString::fromLatin1(module), QString::fromLatin1(procedure),
                      showUser);
    }
}

} // namespace tallix
