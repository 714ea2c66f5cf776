#include "log.h"

#include <QDBusObjectPath>

namespace {

template<typename List, typename ToText>
std::string joined(const List &values, ToText toText)
{
    std::string text = "(";
    const char *separator = "";
    for (const auto &value : values) {
        text += separator + toText(value);
        separator = ", ";
    }
    return text + ")";
}

/// One property of a media object.
std::string propertyText(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusObjectPath>())
        return logText(value.value<QDBusObjectPath>().path());
    if (value.userType() == QMetaType::QStringList)
        return logText(value.toStringList());
    if (!value.canConvert<QString>())
        return std::string("QVariant(") + (value.isValid() ? value.typeName() : "Invalid") + ")";
    return logText(value.toString());
}

} // namespace

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

std::string logText(const QString &text)
{
    return text.toStdString();
}

std::string logText(const QStringList &texts)
{
    return joined(texts, [](const QString &text) { return logText(text); });
}

std::string logText(const QVariantMap &map)
{
    std::string text = "QMap(";
    for (auto it = map.begin(); it != map.end(); ++it)
        text += "(" + logText(it.key()) + ", " + propertyText(it.value()) + ")";
    return text + ")";
}

std::string logText(const QList<CMPath> &paths)
{
    return joined(paths, [](const CMPath &path) { return sdk::logged(path); });
}

std::string logText(const QVariantList &records)
{
    return joined(records, [](const QVariant &record) { return sdk::logged(record); });
}
