#include "environment.h"

#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>

namespace tallix {

Environment Environment::fromProcess()
{
    Environment e;
    const QProcessEnvironment pe = QProcessEnvironment::systemEnvironment();
    for (const QString& k : pe.keys())
        e.vars_.insert(k, pe.value(k));
    return e;
}

Environment Environment::fromMap(QMap<QString, QString> vars)
{
    Environment e;
    e.vars_ = std::move(vars);
    return e;
}

QString Environment::value(const QString& name) const
{
    return vars_.value(name);
}

QString Environment::perUserBase() const
{
    if (isSet("APPDATA"))
        return ToPosixPath(value("APPDATA"));
    if (isSet("XDG_CONFIG_HOME"))
        return value("XDG_CONFIG_HOME");
    const QString home = isSet("HOME") ? value("HOME") : QDir::homePath();
    return home + "/.config";
}

QString Environment::allUsersBase() const
{
    if (isSet("ALLUSERSPROFILE"))
        return ToPosixPath(value("ALLUSERSPROFILE"));
    return QStringLiteral("/etc/xdg");
}

QString Environment::tempFolder() const
{
    if (isSet("temp"))
        return ToPosixPath(value("temp"));
    if (isSet("TMPDIR"))
        return value("TMPDIR");
    return QStringLiteral("/tmp");
}

QString ToPosixPath(QString path)
{
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString JoinPath(const QString& folder, const QString& windowsStyleTail)
{
    QString tail = ToPosixPath(windowsStyleTail);
    QString head = folder;
    while (head.endsWith('/') && head.size() > 1)
        head.chop(1);
    if (!tail.startsWith('/'))
        tail.prepend('/');
    return head + tail;
}

QString FindFileNoCase(const QString& folder, const QString& name)
{
    const QString exact = QDir(folder).filePath(name);
    if (QFileInfo::exists(exact))
        return exact;
    const QStringList entries = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& e : entries)
        if (e.compare(name, Qt::CaseInsensitive) == 0)
            return QDir(folder).filePath(e);
    return exact;
}

bool FileExists(const QString& path)
{
    if (path.isEmpty())
        return false;
    const QFileInfo fi(path);
    return fi.exists() && fi.isFile();
}

} // namespace tallix
