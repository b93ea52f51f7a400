#include "host.h"

namespace tallix::host {

QString ShapeKindName(ShapeKind kind)
{
    switch (kind) {
    case ShapeKind::Text: return QStringLiteral("text");
    case ShapeKind::Picture: return QStringLiteral("picture");
    case ShapeKind::Group: return QStringLiteral("group");
    case ShapeKind::Table: return QStringLiteral("table");
    case ShapeKind::Graphic: return QStringLiteral("graphic");
    case ShapeKind::Connector: return QStringLiteral("connector");
    case ShapeKind::Other: break;
    }
    return QStringLiteral("other");
}

bool IsOwnShapeName(const QString& name)
{
    return name.startsWith(QLatin1String("tlx"), Qt::CaseInsensitive) ||
           name.contains(QLatin1String("tallix"), Qt::CaseInsensitive);
}

} // namespace tallix::host
