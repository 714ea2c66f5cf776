#include "orka.h"

#include <api/core/CMPath.h>

#include <QMetaMethod>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

void orkaAssertFailed(const char *text, const char *source, int line)
{
    std::fprintf(stderr, "ASSERT: \"%s\" in file %s, line %d\n", text, source, line);
    std::fflush(stderr);
    std::abort();
}

namespace {
bool isQueued(const QObject *sender, const QObject *receiver, Qt::ConnectionType type)
{
    const int kind = type & ~Qt::UniqueConnection;
    return kind == Qt::QueuedConnection || kind == Qt::BlockingQueuedConnection
        || sender->thread() != receiver->thread();
}

bool canTravel(const QByteArray &parameterType)
{
    return parameterType.endsWith('*') || QMetaType::type(parameterType) != QMetaType::UnknownType;
}

// True where the connection itself is going to fail: that is told apart by the caller.
bool verifyConnectionSignalParameters(
    const QObject *sender, const char *signal, const QObject *receiver, Qt::ConnectionType type)
{
    if (!sender || !signal || !receiver || !isQueued(sender, receiver, type))
        return true;
    // The text of SIGNAL() begins with a code digit.
    const QByteArray signature = QMetaObject::normalizedSignature(signal + (*signal ? 1 : 0));
    const int index = sender->metaObject()->indexOfSignal(signature);
    if (index < 0)
        return true;
    const QList<QByteArray> types = sender->metaObject()->method(index).parameterTypes();
    return std::all_of(types.begin(), types.end(), canTravel);
}
} // namespace

QMetaObject::Connection orkaConnect(const QObject *sender, const char *signal,
    const QObject *receiver, const char *slot, Qt::ConnectionType type)
{
    ORKA_ASSERT(verifyConnectionSignalParameters(sender, signal, receiver, type));
    QMetaObject::Connection connection = QObject::connect(sender, signal, receiver, slot, type);
    ORKA_ASSERT(connection);
    return connection;
}

const QString &OrkaService_Id()
{
    static const QString key = QStringLiteral("serviceId");
    return key;
}

const QString &OrkaPlayListPrepareItems()
{
    static const QString base = QStringLiteral("playlist/prepareItems");
    return base;
}

const CMPath &OrkaNetworkInfoPath()
{
    static const CMPath path(QStringLiteral("system"), QStringLiteral("networkInfo"));
    return path;
}
