#pragma once
// Makes and unloads the live vote's windows by name, for the program's form manager to
// delegate to: "vCast", "keypadsNotVoted" and "formHelp".

#include <QPointer>
#include <QString>

namespace tallix {

class HelpWindow;
class KeypadsNotVotedForm;
class KeypadsNotVotedWindow;
class VotesCastWindow;
struct RunContext;

class LiveWindowForms {
public:
    explicit LiveWindowForms(RunContext& ctx);
    ~LiveWindowForms();

    static bool Makes(const QString& name);
    bool IsLoaded(const QString& name) const;
    void Load(const QString& name);
    // Windows go with deleteLater: the caller may be the window's own key handler.
    void Unload(const QString& name);
    KeypadsNotVotedForm* keypadsNotVoted() const;
    void ShowHelp();
    void FadeOutAll(double seconds);
    VotesCastWindow* votesCast() const { return vcast_; }

private:
    RunContext& ctx_;
    QPointer<VotesCastWindow> vcast_;
    QPointer<KeypadsNotVotedWindow> notVoted_;
    QPointer<HelpWindow> help_;
};

} // namespace tallix
