#include "MediaTree.h"

#include "FakeQuery.h"

namespace {

MediaObject generatedTrack(const QString &container, int row)
{
    const QString number = "%1"_s.arg(row + 1, 5, 10, QLatin1Char('0'));
    MediaObject track;
    track.id = container + '$' + QString::number(row);
    track.parent = container;
    track.title = "Track " + number;
    track.upnpClass = "object.item.audioItem.musicTrack";
    track.xml = "<upnp:artist>Artist %1</upnp:artist><upnp:album>Album %2</upnp:album>"
                "<res protocolInfo=\"http-get:*:audio/mpeg:*\" duration=\"0:03:20.000\" "
                "size=\"3200000\" bitrate=\"16000\">$BASE/media/%3.mp3</res>"_s.arg(row % 7)
                    .arg(row / 12)
                    .arg(number);
    return track;
}

QString elementText(const MediaObject &object, const QString &property)
{
    if (property == "dc:title")
        return object.title;
    if (property == "upnp:class")
        return object.upnpClass;
    if (property == "@id")
        return object.id;
    if (property == "@parentID")
        return object.parent;
    const int start = object.xml.indexOf('<' + property + '>');
    if (start < 0)
        return {};
    const int text = start + property.size() + 2;
    return object.xml.mid(text, object.xml.indexOf("</", text) - text);
}

} // namespace

MediaTree::MediaTree()
{
    MediaObject root;
    root.id = "0";
    root.parent = "-1";
    root.title = "root";
    root.upnpClass = "object.container.storageFolder";
    root.container = true;
    m_objects.insert(root.id, root);
}

void MediaTree::add(const MediaObject &object)
{
    if (!object.id.isNull())
        m_objects.insert(object.id, object);
    m_children[object.parent].append(object);
}

void MediaTree::addFolder(
    const QString &id, const QString &parent, const QString &title, int generated)
{
    add({id, parent, title, "object.container.storageFolder", {}, true, generated});
}

void MediaTree::addTrack(const QString &id, const QString &parent, const QString &title,
    const QString &moreXml, int seconds)
{
    const QString res =
        "<res protocolInfo=\"http-get:*:audio/mpeg:*\" "
        "duration=\"0:%1:%2\">$BASE/media/%3.mp3</res>"_s.arg(seconds / 60, 2, 10, QLatin1Char('0'))
            .arg(seconds % 60, 2, 10, QLatin1Char('0'))
            .arg(id);
    add({id, parent, title, "object.item.audioItem.musicTrack", moreXml + res});
}

std::optional<MediaObject> MediaTree::object(const QString &id) const
{
    const auto known = m_objects.constFind(id);
    if (known != m_objects.constEnd())
        return *known;
    const int dollar = id.lastIndexOf('$');
    const auto container = m_objects.constFind(id.left(dollar));
    const int row = id.mid(dollar + 1).toInt();
    if (dollar < 0 || container == m_objects.constEnd() || row >= container->generated)
        return std::nullopt;
    return generatedTrack(container->id, row);
}

int MediaTree::childCount(const QString &id) const
{
    return m_children.value(id).size() + m_objects.value(id).generated;
}

MediaObject MediaTree::child(const QString &id, int row) const
{
    const auto listed = m_children.constFind(id);
    const int written = listed == m_children.constEnd() ? 0 : listed->size();
    return row < written ? listed->at(row) : generatedTrack(id, row - written);
}

QVector<MediaObject> MediaTree::matches(const QString &container, const QString &criteria) const
{
    const FakeQuery query(criteria);
    QVector<MediaObject> found;
    for (int row = 0, count = childCount(container); row < count; ++row) {
        const MediaObject object = child(container, row);
        if (query.fits(elementText(object, query.name)))
            found.append(object);
        if (object.container)
            found += matches(object.id, criteria);
    }
    return found;
}

QString didlElement(const MediaObject &object, int childCount, const QString &base)
{
    const QString name = object.container ? "container" : "item";
    QString element = '<' + name;
    const auto attribute = [&element](const char *key, const QString &value) {
        if (!value.isNull())
            element += ' ' + QLatin1String(key) + "=\"" + value.toHtmlEscaped() + '"';
    };
    const auto child = [&element](const QString &key, const QString &value) {
        if (!value.isNull())
            element += '<' + key + '>' + value.toHtmlEscaped() + "</" + key + '>';
    };
    attribute("id", object.id);
    attribute("parentID", object.parent);
    attribute("restricted", "1");
    if (object.container)
        attribute("childCount", QString::number(childCount));
    element += '>';
    child("dc:title", object.title);
    child("upnp:class", object.upnpClass);
    element += QString(object.xml).replace("$BASE", base);
    return element + "</" + name + '>';
}
