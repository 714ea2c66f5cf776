#include "PropertyMapReader.h"

#include "log.h"

#include <QDBusVariant>

#include <utility>

namespace {

using P = ObjectProperties;

/// The whole map, for the line that shows it.
QVariantMap readMap(const QDBusArgument &argument)
{
    QVariantMap map;
    argument >> map;
    return map;
}

} // namespace

void PropertyMapReader::open(const QDBusMessage &reply, const WantedRoles &wanted)
{
    close();
    m_wantsMediaData = wanted.mediaData;
    const QVariant list = reply.arguments().value(0);
    if (list.userType() != qMetaTypeId<QDBusArgument>())
        return;
    m_argument = list.value<QDBusArgument>();
    m_isArray = m_argument->currentType() == QDBusArgument::ArrayType;
    if (m_isArray)
        std::as_const(*m_argument).beginArray();
}

bool PropertyMapReader::isWanted(P::Name name) const
{
    switch (name) {
    case P::AlbumArtURL:
    case P::DisplayName:
    case P::MIMEType:
    case P::Path:
    case P::Type:
        return true;
    case P::Count:
        return false;
    default:
        return m_wantsMediaData;
    }
}

bool PropertyMapReader::next(P *properties)
{
    if (!m_argument)
        return false;
    // Reading is what the const members do; those of the same name without it write.
    const QDBusArgument &argument = *m_argument;
    if (argument.atEnd()) {
        close();
        return false;
    }
    *properties = upnpLog().isEnabledFor(log4cplus::TRACE_LOG_LEVEL) ? P(readMap(argument))
                                                                     : readWanted(argument);
    // What follows a map that stands alone is another argument.
    if (!m_isArray)
        close();
    return true;
}

P PropertyMapReader::readWanted(const QDBusArgument &argument) const
{
    P properties;
    argument.beginMap();
    QString text;
    QDBusVariant value;
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        argument >> text;
        const P::Name name = P::nameOf(text);
        // An entry may be left before its value has been read.
        if (isWanted(name)) {
            argument >> value;
            properties.set(name, value.variant());
        }
        argument.endMapEntry();
    }
    argument.endMap();
    return properties;
}

void PropertyMapReader::close()
{
    // An argument dropped inside its array would keep the whole reply for good.
    if (m_argument && m_isArray)
        std::as_const(*m_argument).endArray();
    m_argument.reset();
}
