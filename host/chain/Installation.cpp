#include "chain/Installation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

namespace {

/// The first that exists of some places relative to the program's folder, else the last.
QString firstOf(const QStringList &places)
{
    QString path;
    for (const QString &place : places) {
        path = QCoreApplication::applicationDirPath() + QLatin1Char('/') + place;
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

QString Installation::bridge()
{
    const QString path = firstOf({QStringLiteral("../services/mediaBridge/orka-media-bridge"),
        QStringLiteral("orka-media-bridge")});
    return QFileInfo(path).isExecutable()
        ? path
        : QStandardPaths::findExecutable(QStringLiteral("orka-media-bridge"));
}
