#pragma once
// The settings document store: every read and write of a question's settings goes
// through these procedures, which turn the node tree into flat "key|value" text. Errors
// travel in the same channel as results, as strings beginning "Err - ".

#include <QString>
#include <QVariant>

namespace tallix {

struct RunContext;
class SettingsDocument;

inline const QString kErrNodeDoesNotExist = QStringLiteral("Err - Node does not exist");
inline const QString kErrNotFound = QStringLiteral("Err - not found");
inline const QString kErrNoChildren = QStringLiteral("Err - no children");

// "//section", or "//section[@name="value"]" when both attribute parts are given.
QString SectionXPath(const QString& section, const QString& attributeName, const QString& attributeValue);

// The settings document, made (empty) on first use.
SettingsDocument& settingsDocOf(RunContext& ctx);

QString XMLGetNodes(RunContext& ctx, const QString& section, const QString& attributeName = {},
                    const QString& attributeValue = {});
QString XMLGetString(RunContext& ctx, const QString& section, const QString& attributeName = {},
                     const QString& attributeValue = {});
QString XMLGetItem(const QString& itemName, const QString& xmlText);
// True when it wrote over an existing key, false when it added one. A floating-point
// value is written with "." whatever the machine's decimal separator; a Boolean as
// "True" or "False".
bool XMLSetSingleNode(RunContext& ctx, const QString& section, const QString& key, const QVariant& value,
                      const QString& attributeName = {}, const QString& attributeValue = {},
                      SettingsDocument* document = nullptr);
bool XMLCreateSection(RunContext& ctx, const QString& section);
void XMLNodeClear(RunContext& ctx, const QString& section, bool removeSection, const QString& attributeName = {},
                  const QString& attributeValue = {});
bool LoadDefaultXML(RunContext& ctx);

} // namespace tallix
