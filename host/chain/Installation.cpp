#include "chain/Installation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

namespace {

/// Of the program orka, which the one that serves the page isn't beside where they are installed.
QString programFolder()
{
    const QString own = QCoreApplication::applicationDirPath();
    const bool isPage =
        QCoreApplication::applicationFilePath().endsWith(QLatin1String("/orka-page"));
    return isPage && !QFileInfo::exists(own + QStringLiteral("/orka"))
        ? own + QStringLiteral("/" ORKA_FROM_PROGRAMS)
        : own;
}

/// The first that exists of some places relative to that folder, else the last.
QString firstOf(const QStringList &places)
{
    const QString folder = programFolder();
    QString path;
    for (const QString &place : places) {
        path = folder + QLatin1Char('/') + place;
        if (QFileInfo::exists(path))
            break;
    }
    return QDir::cleanPath(path);
}

} // namespace

QString Installation::plugin()
{
    return firstOf({QStringLiteral("../modules/upnpClient/liborka_cb_upnpClient.so"),
        QStringLiteral(ORKA_WORKERS "/liborka_cb_upnpClient.so")});
}

QString Installation::privateBusConfiguration()
{
    return firstOf(
        {QStringLiteral("private-bus.conf"), QStringLiteral(ORKA_DATA "/private-bus.conf")});
}

QString Installation::page()
{
    return firstOf({QStringLiteral("../../../web"), QStringLiteral(ORKA_DATA "/web")});
}

QString Installation::pageProgram()
{
    return firstOf({QStringLiteral("orka-page"), QStringLiteral(ORKA_PROGRAMS "/orka-page")});
}

QString Installation::bridge()
{
    const QString path = firstOf({QStringLiteral("../services/mediaBridge/orka-media-bridge"),
        QStringLiteral("orka-media-bridge")});
    return QFileInfo(path).isExecutable()
        ? path
        : QStandardPaths::findExecutable(QStringLiteral("orka-media-bridge"));
}
