#include "io_vote_setup.h"

#include "foundation/error_report.h"
#include "foundation/host.h"
#include "question/common_xml.h"
#include "question/settings_document.h"
#include "question/slide_objects.h"
#include "vote/run_context.h"

namespace tallix {

namespace {
const QString kNotesSentence = QStringLiteral("This slide is a tallix question");
}

void SaveXMLtoPPTSlide(RunContext& ctx, SettingsDocument& document, int slideNumber)
{
    Guarded(ctx, "Common_IO_VoteSetup", "SaveXMLtoPPTSlide", ctx.ShowErrors, [&] {
        const int slide = slideNumber == 0 ? ctx.currentSlide : slideNumber;
        const bool conversion = ctx.arg1.contains(".tlx", Qt::CaseInsensitive);
        if (conversion)
            XMLSetSingleNode(ctx, "file_info", "converted_from", ctx.arg1, {}, {}, &document);
        host::Slide* s = SlideAt(ctx, slide);
        s->GetTags()->Delete("tlxVote");
        s->GetTags()->Add("tlxVote", document.xml());
        host::Shapes* notes = s->NotesPage();
        for (int i = 1; i <= notes->Count(); ++i) {
            host::Shape* shape = notes->Item(i);
            // The body placeholder holds the speaker's notes; the number and header
            // placeholders of a notes page have text frames too and stay as they are.
            const int type = shape->PlaceholderFormatType();
            if (!shape->HasTextFrame() ||
                (type != host::PlaceholderType::Body && type != host::PlaceholderType::Object &&
                 type != host::PlaceholderType::None))
                continue;
            // The notes are a courtesy to the presenter: a note that cannot be read is left alone.
            try {
                QString text = shape->GetTextFrame()->Text();
                if (conversion)
                    text.remove(ctx.arg1, Qt::CaseInsensitive);
                if (!text.contains(kNotesSentence, Qt::CaseInsensitive))
                    shape->GetTextFrame()->SetText(text + "\r\n" + kNotesSentence);
            } catch (const ProcessExit&) {
                throw;
            } catch (...) {
            }
        }
    });
}

} // namespace tallix
