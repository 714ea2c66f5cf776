#include "output/Logging.h"

#include "Failure.h"
#include "GlobalOptions.h"
#include "Text.h"
#include "output/SafeText.h"

#include <QFileInfo>

#include <log4cplus/appender.h>
#include <log4cplus/configurator.h>
#include <log4cplus/consoleappender.h>
#include <log4cplus/initializer.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>
#include <log4cplus/nullappender.h>
#include <log4cplus/spi/loggingevent.h>

namespace {

/// Hands events on to another appender with messages in which titles from media servers can't move
/// a terminal's cursor or begin a line of their own.
class SafeAppender : public log4cplus::Appender
{
public:
    explicit SafeAppender(const log4cplus::SharedAppenderPtr &target)
        : m_target(target)
    {
    }
    ~SafeAppender() override { destructorImpl(); }
    void close() override
    {
        m_target->close();
        closed = true;
    }

protected:
    void append(const log4cplus::spi::InternalLoggingEvent &event) override
    {
        const QString message = safeText(QString::fromStdString(event.getMessage()));
        m_target->doAppend({event.getLoggerName(), event.getLogLevel(), event.getNDC(),
            event.getMDCCopy(), message.toStdString(), event.getThread(), event.getThread2(),
            event.getTimestamp(), event.getFile(), event.getLine(), event.getFunction()});
    }

private:
    log4cplus::SharedAppenderPtr m_target;
};

void makeSafe(log4cplus::Logger logger)
{
    const log4cplus::SharedAppenderPtrList appenders = logger.getAllAppenders();
    for (const log4cplus::SharedAppenderPtr &appender : appenders) {
        logger.removeAppender(appender);
        logger.addAppender(log4cplus::SharedAppenderPtr(new SafeAppender(appender)));
    }
}

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
        throw wrongUsage(Text::tr("The log configuration %1 can't be read. Name a log4cplus "
                                  "properties file that is there.")
                             .arg(quoted(file)));
    }
    log4cplus::PropertyConfigurator::doConfigure(file.toStdString());
    makeSafe(log4cplus::Logger::getRoot());
    const log4cplus::LoggerList loggers = log4cplus::Logger::getCurrentLoggers();
    for (const log4cplus::Logger &logger : loggers)
        makeSafe(logger);
}

void logByVerbosity(int verbosity)
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    if (verbosity == 0) {
        root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
        root.setLogLevel(log4cplus::OFF_LOG_LEVEL);
        return;
    }
    const log4cplus::SharedAppenderPtr lines(new log4cplus::ConsoleAppender(true, true));
    lines->setLayout(std::make_unique<log4cplus::PatternLayout>("%D{%H:%M:%S.%q} %-5p %c: %m%n"));
    root.addAppender(lines);
    makeSafe(root);
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
