#pragma once

#include "UPnPServerList.h"
#include "cb_upnp.h"

#include <QCoreApplication>

#include <cstdlib>

/// What the fuzzer takes for a finding.
inline void require(bool holds)
{
    if (!holds)
        abort();
}

/// A worker without a bus, for inputs that never get that far.
struct LonelyWorker
{
    LonelyWorker()
    {
        qputenv("ORKA_DBUS", "unix:path=/nonexistent");
        log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        static int count = 0;
        static char *none = nullptr;
        static const QCoreApplication application(count, &none);
        // A server that was asked for is recorded, with no object on the bus.
        static CMUPnPWorker made({{CMWorker::Prefix_(), QStringLiteral("upnp")}});
        worker = &made;
        worker->serverList()->serverPath(QStringLiteral("uuid:1"));
    }

    UPnPServerList *servers() const { return worker->serverList(); }

    CMUPnPWorker *worker;
};
