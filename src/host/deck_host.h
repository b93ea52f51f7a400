#pragma once
// The host stand-in over a deck in memory: the application, its one presentation,
// the show and the document window. Every change goes through perform(), which the
// `.pptx` host also records for its commit.

#include "deck.h"
#include "foundation/host.h"

#include <memory>

namespace tallix::host {

class DeckHost : public Application {
public:
    DeckHost(Deck deck, HostConfig config);
    ~DeckHost() override;

    QString Version() const override { return QStringLiteral("16.0"); }
    Presentation* ActivePresentation() override;
    int PresentationsCount() const override;
    Presentation* Presentations(const QString& name) override;
    int SlideShowWindowsCount() const override;
    SlideShowWindow* SlideShowWindows(int index) override;
    int WindowsCount() const override;
    DocumentWindow* Windows(int index) override;
    DocumentWindow* ActiveWindow() override;
    QString AddInPath(const QString& name) const override;
    bool CommandBarItemChecked(const QString& path) const override;
    void Run(const QString& macro, const QString& argument = QString()) override;

    Deck& deck() { return deck_; }
    HostConfig& config() { return config_; }
    // The user closed the presentation: the host has none open any more.
    void ClosePresentation() { open_ = false; }
    // Where the deck lives; empty for one that lives only in memory.
    virtual QString FilePath() const { return {}; }
    virtual void SavePresentation() {}

    // Makes a change; returns the id of a shape it made.
    virtual int perform(const Op& op, const Clip* clip = nullptr);
    void setClipboard(Clip clip) { clipboard_ = std::move(clip); }
    const Clip& clipboard() const { return clipboard_; }
    void log(const QString& line) const;

    struct Impl;

protected:
    Deck deck_;
    HostConfig config_;
    bool open_ = true;
    Clip clipboard_;
    std::unique_ptr<Impl> d;
};

// The host for tests: a deck that lives only in memory, blank or loaded once.
class MemoryHost : public DeckHost {
public:
    explicit MemoryHost(int slides = 1, HostConfig config = {});
    MemoryHost(Deck deck, HostConfig config);
};

} // namespace tallix::host
