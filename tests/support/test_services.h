#pragma once
// A Services record for tests: a manual clock and pump, scripted dialogs, and private
// folders standing in for APPDATA, ALLUSERSPROFILE, temp and the program's folder.

#include "foundation/clock.h"
#include "foundation/dialogs.h"
#include "foundation/event_pump.h"
#include "foundation/services.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace tallix::testing {

struct TestServices {
    QTemporaryDir root;
    ManualClock clock{QDateTime(QDate(2026, 11, 16), QTime(2, 35, 19, 41))};
    ManualEventPump pump{clock};
    ScriptedDialogs dialogs;
    Services s;

    TestServices()
    {
        for (const char* d : {"appdata", "allusers", "temp", "app"})
            QDir(root.path()).mkpath(d);
        s.clock = &clock;
        s.pump = &pump;
        s.dialogs = &dialogs;
        s.env = Environment::fromMap({{"APPDATA", path("appdata")},
                                      {"ALLUSERSPROFILE", path("allusers")},
                                      {"temp", path("temp")},
                                      {"HOME", path("home")}});
        s.app.folder = path("app");
    }

    QString path(const QString& rel) const { return root.path() + "/" + rel; }

    static QString read(const QString& file)
    {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    static void write(const QString& file, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile f(file);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
    }
};

} // namespace tallix::testing
