#pragma once
// The parts of a blank deck and of a notes page made where a deck had none.

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

namespace tallix::host {

extern const char* const kNotesMasterXml;
extern const char* const kNotesSlideXml;

// The parts of a blank 16:9 deck with `slides` title-and-content slides, in zip order.
QList<QPair<QString, QByteArray>> BlankDeckParts(int slides);

} // namespace tallix::host
