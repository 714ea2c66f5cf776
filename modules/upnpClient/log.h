#pragma once

#include "sdk.h"

#include <QList>
#include <QString>
#include <QVariantMap>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <string>

/// Logger "CB_UPnP": everything but path translation.
const log4cplus::Logger &upnpLog();

/// Logger "CB_UPnP_util": path translation.
const log4cplus::Logger &upnpUtilLog();

/// Values as they stand in log lines, in UTF-8: texts as they are, lists as "(a, b)", maps as
/// "QMap((key, value)(key, value))". To be called within the logging macros, which evaluate
/// their arguments only where the line is written.
std::string logText(const QString &text);
std::string logText(const QStringList &texts);
std::string logText(const QVariantMap &map);
std::string logText(const QList<CMPath> &paths);
/// A list of records.
std::string logText(const QVariantList &records);

/// The line that every entry point and slot writes; nothing is built unless TRACE is on.
#define TRACE_ENTER() TRACE_ENTER_WITH("")

/// The same with details behind it: `TRACE_ENTER_WITH("udn=" << logText(udn))`.
#define TRACE_ENTER_WITH(details) TRACE_ENTER_AS(Q_FUNC_INFO, details)

/// The same in the name of another function, which is what people look for in the log.
// NOLINTBEGIN(bugprone-macro-parentheses): the details go on with the stream
#define TRACE_ENTER_AS(function, details) \
    LOG4CPLUS_TRACE(upnpLog(), "Enter " << sdk::scopedName(function) << ": " << details)
// NOLINTEND(bugprone-macro-parentheses)
