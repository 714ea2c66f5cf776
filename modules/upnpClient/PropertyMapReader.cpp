#include "PropertyMapReader.h"

#include <QDBusVariant>

#include <utility>

PropertyMapReader::PropertyMapReader(const QDBusMessage &reply)
{
    open(reply);
}

void PropertyMapReader::open(const QDBusMessage &reply)
{
    close();
    const QVariant list = reply.arguments().value(0);
    if (list.userType() != qMetaTypeId<QDBusArgument>())
        return;
    m_argument = list.value<QDBusArgument>();
    std::as_const(*m_argument).beginArray();
}

bool PropertyMapReader::next(QVariantMap *map)
{
    if (!m_argument)
        return false;
    // Reading is what the const members do; those of the same name without it write.
    const QDBusArgument &argument = *m_argument;
    if (argument.atEnd()) {
        close();
        return false;
    }
    map->clear();
    argument.beginMap();
    QString name;
    QDBusVariant value;
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        argument >> name >> value;
        argument.endMapEntry();
        map->insert(name, value.variant());
    }
    argument.endMap();
    return true;
}

void PropertyMapReader::close()
{
    // An argument dropped inside its array would keep the whole reply for good.
    if (m_argument)
        std::as_const(*m_argument).endArray();
    m_argument.reset();
}
