#include "live_window_forms.h"

#include "keypads_not_voted_window.h"
#include "livewindow/window_placement.h"
#include "vote/run_context.h"
#include "votes_cast_window.h"

namespace tallix {

LiveWindowForms::LiveWindowForms(RunContext& ctx) : ctx_(ctx) {}

LiveWindowForms::~LiveWindowForms()
{
    for (const QString& n : {FormName::keypadsNotVoted, FormName::formHelp, FormName::vCast})
        Unload(n);
}

bool LiveWindowForms::Makes(const QString& name)
{
    return name == FormName::vCast || name == FormName::keypadsNotVoted || name == FormName::formHelp;
}

bool LiveWindowForms::IsLoaded(const QString& name) const
{
    if (name == FormName::vCast)
        return !vcast_.isNull();
    if (name == FormName::keypadsNotVoted)
        return !notVoted_.isNull();
    if (name == FormName::formHelp)
        return !help_.isNull() && help_->isVisible();
    return false;
}

void LiveWindowForms::Load(const QString& name)
{
    if (IsLoaded(name))
        return;
    if (name == FormName::vCast) {
        vcast_ = new VotesCastWindow(ctx_);
        ctx_.vCast = &vcast_->form();
        vcast_->form().Form_Load();
    } else if (name == FormName::keypadsNotVoted) {
        const WindowRect under = vcast_ ? vcast_->windowRect() : WindowRect{};
        notVoted_ = new KeypadsNotVotedWindow(ctx_, under);
    } else if (name == FormName::formHelp) {
        ShowHelp();
    }
}

void LiveWindowForms::Unload(const QString& name)
{
    if (name == FormName::vCast && vcast_) {
        if (ctx_.vCast == &vcast_->form())
            ctx_.vCast = nullptr;
        vcast_->hide();
        vcast_->deleteLater();
        vcast_ = nullptr;
    } else if (name == FormName::keypadsNotVoted && notVoted_) {
        notVoted_->hide();
        notVoted_->deleteLater();
        notVoted_ = nullptr;
    } else if (name == FormName::formHelp && help_) {
        help_->deleteLater();
        help_ = nullptr;
    }
}

KeypadsNotVotedForm* LiveWindowForms::keypadsNotVoted() const
{
    return notVoted_.data();
}

void LiveWindowForms::ShowHelp()
{
    if (!help_)
        help_ = new HelpWindow;
    help_->resize(640, 420);
    const WindowRect r = AlignWindowToPPTSlideShow(
        ctx_, {help_->x(), help_->y(), help_->x() + help_->width(), help_->y() + help_->height()}, AlignCentred, 0,
        0, -1, -1);
    help_->move(r.Left, r.Top);
    help_->show();
    help_->raise();
    help_->activateWindow();
}

void LiveWindowForms::FadeOutAll(double seconds)
{
    QWidget* windows[] = {vcast_.data(), notVoted_.data(), help_.data()};
    for (QWidget* w : windows)
        if (w && w->isVisible()) {
            QPointer<QWidget> guard(w);   // the pump may unload it meanwhile
            FadeWindow(
                ctx_, [guard](double o) { if (guard) guard->setWindowOpacity(o); }, w->windowOpacity(), 0,
                seconds);
        }
}

} // namespace tallix
