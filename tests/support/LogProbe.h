#pragma once

#include <QMutex>
#include <QStringList>

#include <log4cplus/appender.h>
#include <log4cplus/logger.h>
#include <log4cplus/spi/loggingevent.h>

/// Every log line that is written while it lives, as "LEVEL logger: text".
class LogProbe
{
public:
    explicit LogProbe(log4cplus::LogLevel level = log4cplus::TRACE_LOG_LEVEL)
    {
        log4cplus::Logger::getRoot().addAppender(m_collector);
        setLevel(level);
    }
    ~LogProbe() { log4cplus::Logger::getRoot().removeAppender(m_collector); }
    LogProbe(const LogProbe &) = delete;
    LogProbe &operator=(const LogProbe &) = delete;

    static void setLevel(log4cplus::LogLevel level)
    {
        log4cplus::Logger::getRoot().setLogLevel(level);
    }
    /// Those that start with `start`, such as "ERROR" or "INFO CB_UPnP: Updating".
    QStringList lines(const QString &start = QString()) const
    {
        const QMutexLocker locker(&collector().mutex);
        QStringList found;
        for (const QString &line : qAsConst(collector().lines)) {
            if (line.startsWith(start))
                found.append(line);
        }
        return found;
    }
    int count(const QString &line) const { return lines().count(line); }
    void clear()
    {
        const QMutexLocker locker(&collector().mutex);
        collector().lines.clear();
    }

private:
    struct Collector : log4cplus::Appender
    {
        ~Collector() override { destructorImpl(); }
        void close() override {}
        void append(const log4cplus::spi::InternalLoggingEvent &event) override
        {
            const QMutexLocker locker(&mutex);
            lines.append(
                QString::fromStdString(log4cplus::getLogLevelManager().toString(event.getLogLevel())
                    + ' ' + event.getLoggerName() + ": " + event.getMessage()));
        }

        QMutex mutex;
        QStringList lines;
    };
    Collector &collector() const { return static_cast<Collector &>(*m_collector); }

    log4cplus::SharedAppenderPtr m_collector{new Collector};
};
