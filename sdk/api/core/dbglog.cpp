#include "dbglog.h"

#include <api/core/CMPath.h>
#include <api/core/OrkaHash.h>

#include <QDBusVariant>

#include <private/PrettyFunction.h>

std::string dbglog_scopedFunction(const char *prettyFunction, const char *logger)
{
    const FunctionName name = parsePrettyFunction(prettyFunction);
    const std::string scoped =
        name.scope.empty() ? name.function : name.scope + "::" + name.function;
    const std::string prefix = std::string(logger ? logger : "") + "::";
    return scoped.compare(0, prefix.size(), prefix) == 0 ? scoped.substr(prefix.size()) : scoped;
}

namespace {
template<typename List>
std::ostream &writeList(std::ostream &stream, const List &values)
{
    stream << '(';
    const char *separator = "";
    for (const auto &value : values) {
        stream << separator << value;
        separator = ", ";
    }
    return stream << ')';
}

void writeOther(std::ostream &stream, const QVariant &value)
{
    if (value.canConvert<OrkaHash>()) {
        stream << OrkaHash::fromVariant(value);
    } else if (value.canConvert<QString>()) {
        stream << value.toString();
    } else {
        stream << "QVariant(" << value.typeName() << ')';
    }
}
} // namespace

std::ostream &operator<<(std::ostream &stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return stream.write(bytes.constData(), bytes.size());
}

std::ostream &operator<<(std::ostream &stream, const QStringList &texts)
{
    return writeList(stream, texts);
}

std::ostream &operator<<(std::ostream &stream, const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return stream << "(invalid)";
    case QMetaType::QStringList:
        return stream << value.toStringList();
    case QMetaType::QVariantList:
        return stream << value.toList();
    case QMetaType::QVariantMap:
        return stream << value.toMap();
    default:
        break;
    }
    if (value.userType() == qMetaTypeId<QDBusObjectPath>()) {
        stream << value.value<QDBusObjectPath>();
    } else if (value.userType() == qMetaTypeId<QDBusVariant>()) {
        stream << value.value<QDBusVariant>().variant();
    } else {
        writeOther(stream, value);
    }
    return stream;
}

std::ostream &operator<<(std::ostream &stream, const QVariantList &values)
{
    return writeList(stream, values);
}

std::ostream &operator<<(std::ostream &stream, const QVariantMap &map)
{
    stream << "QMap(";
    for (auto it = map.begin(); it != map.end(); ++it)
        stream << '(' << it.key() << ", " << it.value() << ')';
    return stream << ')';
}

std::ostream &operator<<(std::ostream &stream, const QDBusObjectPath &path)
{
    return stream << path.path();
}

std::ostream &operator<<(std::ostream &stream, const CMPath &path)
{
    return stream << path.toEncoded();
}

std::ostream &operator<<(std::ostream &stream, const QList<CMPath> &paths)
{
    return writeList(stream, paths);
}

std::ostream &operator<<(std::ostream &stream, const OrkaHash &record)
{
    return stream << record.toJsonString();
}
