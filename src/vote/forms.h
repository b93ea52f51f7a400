#pragma once
// The windows that vote logic reaches. The logic draws nothing: the program fills these
// with real windows, tests with fakes. A form that is not loaded is a null pointer in
// the run context; the form manager loads and unloads them by name.

#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace tallix {

// Names of the forms, as the system's code compares them.
namespace FormName {
inline const QString comms = QStringLiteral("comms");
inline const QString vCast = QStringLiteral("vCast");
inline const QString FrmTChart = QStringLiteral("FrmTChart");
inline const QString keypadsNotVoted = QStringLiteral("keypadsNotVoted");
} // namespace FormName

// Loads and unloads the program's windows by name, in the order they were loaded.
class FormManager {
public:
    virtual ~FormManager() = default;
    virtual bool IsLoaded(const QString& name) const = 0;
    // Makes the form if it is not loaded and sets its pointer in the run context.
    virtual void Load(const QString& name) = 0;
    virtual void Unload(const QString& name) = 0;
    virtual QStringList LoadedForms() const = 0;
};

// The votes-cast window, as far as vote logic needs it.
class VotesCastForm {
public:
    virtual ~VotesCastForm() = default;
    virtual void ShowBaseErrorMessage(short base, const QString& message) = 0;
    virtual int BaseIndicatorCount() const = 0;
    virtual qint32 BaseIndicatorColour(int index) const = 0;
    virtual void SetBaseIndicatorColour(int index, qint32 colour) = 0;
    virtual void ShowBaseIndicator(int index) = 0;
    virtual void LogBaseResponded(short base) = 0;
    // The counter label `Label1`: its caption and font size.
    virtual void SetCounterLabel(const QString& caption, int fontSize) = 0;
};

// The result window `FrmTChart`, as far as vote logic needs it.
class ResultForm {
public:
    virtual ~ResultForm() = default;
    // Puts the chart on the question slide; -1 exports every chart element.
    virtual void GraphtoSlide(short elements) = 0;

    // For the after-vote dispatcher: the key that ended the result (0 none yet) and the
    // shift state stored with it (2 = Ctrl), and the restart asked for by another form.
    virtual short PendingKey() const = 0;
    virtual short PendingShift() const = 0;
    virtual void ClearPendingKey() = 0;
    virtual void ExternalRestart() = 0;
    // Full opacity and topmost.
    virtual void ShowMe() = 0;
    virtual bool IsOnView() const = 0;
};

} // namespace tallix
