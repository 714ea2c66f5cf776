#pragma once

#include "web/ArtCache.h"
#include "web/CarriedAddresses.h"
#include "web/HttpServer.h"
#include "web/LocalServers.h"

#include <QHash>
#include <QThreadPool>

#include <map>
#include <vector>

/// /proxy/BASE64[?w=PIXELS]: the pictures that rows name, as the worker writes their addresses.
/// Gets only those that rows of this run have carried, and gives only what is a picture by its
/// contents. One that many ask for is fetched once.
class ArtProxy
{
public:
    ArtProxy(const CarriedAddresses &carried, const LocalServers &local, HttpServer &server);
    ~ArtProxy();

private:
    class Job;
    struct Scaling
    {
        ExchangePointer exchange;
        QByteArray url;
        int width;
        QByteArray picture;
        QByteArray scaled;
    };
    void answer(const ExchangePointer &exchange);
    void begin(const QByteArray &url);
    void fail(const QByteArray &url);
    void finish(const QByteArray &url, const QByteArray &picture, const QString &problem);
    void giveFromOriginal(const ExchangePointer &exchange, const QByteArray &url, int width,
        const QByteArray &picture);
    void finishScaling(std::unique_ptr<Scaling> scaling);

    const CarriedAddresses &m_carried;
    GRef<SoupSession> m_session;
    ArtCache m_cache;
    QThreadPool m_scalers;
    std::map<QByteArray, std::unique_ptr<Job>> m_jobs;
    /// What couldn't be had, and until when nobody is asked again.
    QHash<QByteArray, qint64> m_failed;
    QObject m_context;
};

/// The address in a path behind `prefix`, in either alphabet of Base64; empty where there is none.
QByteArray addressInPath(const Exchange &exchange, const char *prefix);
