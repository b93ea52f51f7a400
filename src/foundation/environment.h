#pragma once
// The process environment and the folders the system builds from it. The system names
// Windows variables (APPDATA, ALLUSERSPROFILE, temp, windir); they are honoured when set,
// with "\" read as "/", and otherwise the usual Linux folders stand in for them.

#include <QMap>
#include <QString>

namespace tallix {

class Environment {
public:
    // Reads the real process environment.
    static Environment fromProcess();
    // Only the given variables exist (for tests).
    static Environment fromMap(QMap<QString, QString> vars);

    QString value(const QString& name) const;
    bool isSet(const QString& name) const { return !value(name).isEmpty(); }
    void set(const QString& name, const QString& value) { vars_[name] = value; }

    // APPDATA, else $XDG_CONFIG_HOME, else ~/.config
    QString perUserBase() const;
    // ALLUSERSPROFILE, else /etc/xdg
    QString allUsersBase() const;
    // temp, else $TMPDIR, else /tmp
    QString tempFolder() const;

private:
    QMap<QString, QString> vars_;
};

// Joins a folder and a path written with "\" separators, as the system builds them.
QString JoinPath(const QString& folder, const QString& windowsStyleTail);
QString ToPosixPath(QString path);

// The file of that name in the folder, found without regard to case, as on the
// original's file system; the exact-case path when nothing matches.
QString FindFileNoCase(const QString& folder, const QString& name);
bool FileExists(const QString& path);

} // namespace tallix
