#include "PropertyMapReader.h"

#include <QDBusVariant>

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
    m_argument->beginArray();
}

bool PropertyMapReader::next(QVariantMap *map)
{
    if (!m_argument)
        return false;
    if (m_argument->atEnd()) {
        close();
        return false;
    }
    map->clear();
    m_argument->beginMap();
    QString name;
    QDBusVariant value;
    while (!m_argument->atEnd()) {
        m_argument->beginMapEntry();
        *m_argument >> name >> value;
        m_argument->endMapEntry();
        map->insert(name, value.variant());
    }
    m_argument->endMap();
    return true;
}

void PropertyMapReader::close()
{
    // An argument dropped inside its array would keep the whole reply for good.
    if (m_argument)
        m_argument->endArray();
    m_argument.reset();
}
