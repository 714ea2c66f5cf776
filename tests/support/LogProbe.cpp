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

    QStringList lines() const
    {
        const QMutexLocker locker(&m_mutex);
        return m_lines;
    }
    void clear()
    {
        const QMutexLocker locker(&m_mutex);
        m_lines.clear();
    }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        const auto &level = log4cplus::getLogLevelManager().toString(event.getLogLevel());
        const QString line =
            QStringLiteral("%1 %2: %3")
                .arg(QString::fromStdString(level), QString::fromStdString(event.getLoggerName()),
                    QString::fromStdString(event.getMessage()));
        const QMutexLocker locker(&m_mutex);
        m_lines.append(line);
    }

private:
    mutable QMutex m_mutex;
    QStringList m_lines;
};

Collector *collector(const log4cplus::SharedAppenderPtr &appender)
{
    return static_cast<Collector *>(appender.get());
}

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

QStringList LogProbe::lines() const
{
    return collector(m_appender)->lines();
}

QStringList LogProbe::lines(const QString &start) const
{
    QStringList found;
    for (const QString &line : lines()) {
        if (line.startsWith(start))
            found.append(line);
    }
    return found;
}

void LogProbe::clear()
{
    collector(m_appender)->clear();
}
