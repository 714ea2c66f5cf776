#include "log.h"

const log4cplus::Logger &upnpLog()
{
    static const log4cplus::Logger logger = log4cplus::Logger::getInstance("CB_UPnP");
    return logger;
}

const log4cplus::Logger &upnpUtilLog()
{
    static const log4cplus::Logger logger = log4cplus::Logger::getInstance("CB_UPnP_util");
    return logger;
}
