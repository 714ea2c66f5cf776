#pragma once

#include "sdk.h"

/// Logger "CB_UPnP": everything but path translation.
const log4cplus::Logger &upnpLog();

/// Logger "CB_UPnP_util": path translation.
const log4cplus::Logger &upnpUtilLog();

/// The line that every entry point and slot writes; nothing is built unless TRACE is on.
#define TRACE_ENTER() \
    LOG4CPLUS_TRACE(upnpLog(), "Enter " << dbglog_scopedFunction(Q_FUNC_INFO, "CB_UPnP") << ": ")

/// The same with details behind it: `TRACE_ENTER_WITH("udn=" << udn)`.
// NOLINTBEGIN(bugprone-macro-parentheses): the details go on with the stream
#define TRACE_ENTER_WITH(details) \
    LOG4CPLUS_TRACE(              \
        upnpLog(), "Enter " << dbglog_scopedFunction(Q_FUNC_INFO, "CB_UPnP") << ": " << details)
// NOLINTEND(bugprone-macro-parentheses)
