#pragma once

#include <QString>
#include <QStringList>

#include <log4cplus/appender.h>

/// Every log line that is written while it lives, as "LEVEL logger: text".
class LogProbe
{
public:
    explicit LogProbe(log4cplus::LogLevel level = log4cplus::TRACE_LOG_LEVEL);
    ~LogProbe();
    LogProbe(const LogProbe &) = delete;
    LogProbe &operator=(const LogProbe &) = delete;

    static void setLevel(log4cplus::LogLevel level);
    /// Those that start with `start`, such as "ERROR" or "INFO CB_UPnP: Updating".
    QStringList lines(const QString &start = QString()) const;
    int count(const QString &line) const { return lines().count(line); }
    void clear();

private:
    log4cplus::SharedAppenderPtr m_appender;
};
