#include "output/Playlist.h"
#include "output/SafeText.h"

#include <QBuffer>
#include <QXmlStreamWriter>

namespace {

/// XML 1.0 has no way to write most control characters, half pairs and two noncharacters.
QString withoutForbidden(const QString &text)
{
    QVector<uint> characters = text.toUcs4(); // half a pair becomes U+FFFD
    for (uint &c : characters) {
        const bool control = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
        if (control || c == 0xfffe || c == 0xffff)
            c = 0xfffd;
    }
    return QString::fromUcs4(characters.constData(), characters.size());
}

/// What a terminal obeys is written as a reference; so is a carriage return, since a reader turns a
/// bare one into a newline.
void writeCharacters(QXmlStreamWriter &xml, const QString &text)
{
    const QString whole = withoutForbidden(text);
    int start = 0;
    for (int i = 0; i < whole.size(); ++i) {
        const ushort c = whole.at(i).unicode();
        if (!obeyedByTerminals(c) || c == '\n' || c == '\t')
            continue;
        xml.writeCharacters(whole.mid(start, i - start));
        xml.writeEntityReference(QStringLiteral("#%1").arg(c));
        start = i + 1;
    }
    xml.writeCharacters(whole.mid(start));
}

/// An element, left out where there is nothing to say.
void writeElement(QXmlStreamWriter &xml, const QString &name, const QString &text)
{
    if (text.isEmpty())
        return;
    xml.writeStartElement(name);
    writeCharacters(xml, text);
    xml.writeEndElement();
}

void writeTrack(QXmlStreamWriter &xml, const OrkaPlayListItem &item)
{
    xml.writeStartElement(QStringLiteral("track"));
    writeElement(xml, QStringLiteral("location"), safeUrl(item.url()));
    writeElement(xml, QStringLiteral("title"), item.title());
    writeElement(xml, QStringLiteral("creator"), item.artist());
    if (isPlayableUrl(item.artworkUrl()))
        writeElement(xml, QStringLiteral("image"), safeUrl(item.artworkUrl()));
    writeElement(xml, QStringLiteral("album"), item.album());
    if (item.durationSeconds() > 0) {
        writeElement(
            xml, QStringLiteral("duration"), QString::number(item.durationSeconds() * 1000LL));
    }
    xml.writeEndElement();
}

} // namespace

QByteArray toXspf(const PlayListItems &items)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&buffer);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("playlist"));
    xml.writeDefaultNamespace(QStringLiteral("http://xspf.org/ns/0/"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
    xml.writeStartElement(QStringLiteral("trackList"));
    for (const OrkaPlayListItem &item : items)
        writeTrack(xml, item);
    xml.writeEndDocument();
    return buffer.data();
}
