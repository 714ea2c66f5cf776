#include "output/Logging.h"

#include "Failure.h"
#include "GlobalOptions.h"
#include "output/SafeText.h"

#include <QFileInfo>

#include <log4cplus/appender.h>
#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <log4cplus/nullappender.h>
#include <log4cplus/spi/loggingevent.h>

#include <cstdio>

namespace {

/// Lines on standard error in which titles from media servers can't move the cursor or begin a
/// line of their own.
class SafeStderrAppender : public log4cplus::Appender
{
public:
    SafeStderrAppender()
    {
        setLayout(std::make_unique<log4cplus::PatternLayout>("%D{%H:%M:%S.%q} %-5p %c: %m"));
    }
    ~SafeStderrAppender() override { destructorImpl(); }
    void close() override { closed = true; }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        const QString line = safeText(QString::fromStdString(formatEvent(event)));
        std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stderr);
    }
};

log4cplus::LogLevel levelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return log4cplus::DEBUG_LOG_LEVEL;
    case QtInfoMsg:
        return log4cplus::INFO_LOG_LEVEL;
    case QtWarningMsg:
        return log4cplus::WARN_LOG_LEVEL;
    default:
        return log4cplus::ERROR_LOG_LEVEL;
    }
}

void logQtMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    static const log4cplus::Logger logger = log4cplus::Logger::getInstance("Qt");
    logger.log(levelOf(type), message.toStdString());
}

void readConfiguration(const QString &file)
{
    const QFileInfo info(file);
    if (!info.isFile() || !info.isReadable()) {
        throw wrongUsage(QStringLiteral("The log configuration %1 can't be read. Name a log4cplus "
                                        "properties file that is there.")
                             .arg(quoted(file)));
    }
    log4cplus::PropertyConfigurator::doConfigure(file.toStdString());
}

void logByVerbosity(int verbosity)
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    if (verbosity == 0) {
        root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
        root.setLogLevel(log4cplus::OFF_LOG_LEVEL);
        return;
    }
    root.addAppender(log4cplus::SharedAppenderPtr(new SafeStderrAppender));
    root.setLogLevel(verbosity == 1 ? log4cplus::INFO_LOG_LEVEL
            : verbosity == 2        ? log4cplus::DEBUG_LOG_LEVEL
                                    : log4cplus::TRACE_LOG_LEVEL);
}

} // namespace

void startLogging(const GlobalOptions &options)
{
    static const log4cplus::Initializer initializer;
    if (options.logConfig.isEmpty()) {
        logByVerbosity(options.verbosity);
    } else {
        readConfiguration(options.logConfig);
    }
    qInstallMessageHandler(logQtMessage);
}
