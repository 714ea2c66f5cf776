#include "LogProbe.h"

#include <QMutex>

#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

namespace {

class Collector : public log4cplus::Appender
{
public:
    ~Collector() override { destructorImpl(); }
    void close() override {}

    QMutex mutex;
    QStringList lines;

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        const auto &level = log4cplus::getLogLevelManager().toString(event.getLogLevel());
        const QString line =
            QString::fromStdString(level + ' ' + event.getLoggerName() + ": " + event.getMessage());
        const QMutexLocker locker(&mutex);
        lines.append(line);
    }
};

} // namespace

LogProbe::LogProbe(log4cplus::LogLevel level)
    : m_appender(new Collector)
{
    log4cplus::Logger::getRoot().addAppender(m_appender);
    setLevel(level);
}

LogProbe::~LogProbe()
{
    log4cplus::Logger::getRoot().removeAppender(m_appender);
}

void LogProbe::setLevel(log4cplus::LogLevel level)
{
    log4cplus::Logger::getRoot().setLogLevel(level);
}

QStringList LogProbe::lines(const QString &start) const
{
    auto *collector = static_cast<Collector *>(m_appender.get());
    const QMutexLocker locker(&collector->mutex);
    QStringList found;
    for (const QString &line : qAsConst(collector->lines)) {
        if (line.startsWith(start))
            found.append(line);
    }
    return found;
}

void LogProbe::clear()
{
    auto *collector = static_cast<Collector *>(m_appender.get());
    const QMutexLocker locker(&collector->mutex);
    collector->lines.clear();
}
