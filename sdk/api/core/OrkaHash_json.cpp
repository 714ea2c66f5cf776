#include "OrkaHash.h"

#include <api/core/CMPath.h>
#include <api/core/TrString.h>

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QLocale>

#include <cmath>

namespace {
// A record of a track with its media data is about this long.
constexpr int usualLength = 1024;

class JsonWriter
{
public:
    JsonWriter() { m_out.reserve(usualLength); }
    QString result() const { return m_out; }

    void write(const QVariant &value);
    void writeMember(const QString &key, const QVariant &value);
    void open(char bracket);
    void close(char bracket);

private:
    void writeCustom(const QVariant &value);
    void writeText(const QString &text);
    void writeEscape(QChar c);
    void writeDouble(double value);
    template<typename Map>
    void writeMap(const Map &map);
    void writeHash(const QVariantHash &hash);
    void writeRecord(const OrkaHash &record);
    template<typename List>
    void writeArray(const List &list);
    void append(const char *text) { m_out += QLatin1String(text); }
    void separate();

    QString m_out;
    bool m_isFirst = true;
};

void JsonWriter::open(char bracket)
{
    m_out += QLatin1Char(bracket);
    m_isFirst = true;
}

void JsonWriter::close(char bracket)
{
    m_out += QLatin1Char(bracket);
    m_isFirst = false;
}

void JsonWriter::separate()
{
    if (!m_isFirst)
        m_out += QLatin1Char(',');
    m_isFirst = false;
}

bool needsEscape(const QChar *at, const QChar *end)
{
    const ushort c = at->unicode();
    if (c < 0x20 || c == '"' || c == '\\')
        return true;
    return at->isSurrogate() && !(at->isHighSurrogate() && at + 1 < end && at[1].isLowSurrogate());
}

void JsonWriter::writeText(const QString &text)
{
    m_out += QLatin1Char('"');
    const QChar *runStart = text.constData();
    const QChar *const end = runStart + text.size();
    for (const QChar *at = runStart; at < end; ++at) {
        if (needsEscape(at, end)) {
            m_out.append(runStart, int(at - runStart));
            writeEscape(*at);
            runStart = at + 1;
        } else if (at->isHighSurrogate()) {
            ++at;
        }
    }
    m_out.append(runStart, int(end - runStart));
    m_out += QLatin1Char('"');
}

void JsonWriter::writeEscape(QChar c)
{
    static const char digits[] = "0123456789abcdef";
    const ushort code = c.unicode();
    if (code == '"' || code == '\\') {
        m_out += QLatin1Char('\\');
        m_out += c;
        return;
    }
    const char text[] = {'\\', 'u', digits[code >> 12], digits[code >> 8 & 15],
        digits[code >> 4 & 15], digits[code & 15], '\0'};
    append(text);
}

void JsonWriter::writeDouble(double value)
{
    if (std::isfinite(value)) {
        m_out += QString::number(value, 'g', QLocale::FloatingPointShortest);
    } else {
        append("null");
    }
}

void JsonWriter::writeMember(const QString &key, const QVariant &value)
{
    separate();
    writeText(key);
    m_out += QLatin1Char(':');
    write(value);
}

template<typename Map>
void JsonWriter::writeMap(const Map &map)
{
    open('{');
    for (auto it = map.begin(); it != map.end(); ++it)
        writeMember(it.key(), it.value());
    close('}');
}

void JsonWriter::writeHash(const QVariantHash &hash)
{
    QVariantMap sorted;
    for (auto it = hash.begin(); it != hash.end(); ++it)
        sorted.insert(it.key(), it.value());
    writeMap(sorted);
}

template<typename List>
void JsonWriter::writeArray(const List &list)
{
    open('[');
    for (const auto &value : list) {
        separate();
        write(value);
    }
    close(']');
}

void JsonWriter::write(const QVariant &value)
{
    const void *const data = value.constData();
    switch (value.userType()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return append("null");
    case QMetaType::Bool:
        return append(value.toBool() ? "true" : "false");
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::SChar:
    case QMetaType::Long:
    case QMetaType::LongLong:
        m_out += QString::number(value.toLongLong());
        return;
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        m_out += QString::number(value.toULongLong());
        return;
    case QMetaType::Double:
    case QMetaType::Float:
        return writeDouble(value.toDouble());
    case QMetaType::QString:
        return writeText(*static_cast<const QString *>(data));
    case QMetaType::QByteArray:
        return writeText(QString::fromUtf8(*static_cast<const QByteArray *>(data)));
    case QMetaType::QStringList:
        return writeArray(*static_cast<const QStringList *>(data));
    case QMetaType::QVariantList:
        return writeArray(*static_cast<const QVariantList *>(data));
    case QMetaType::QVariantMap:
        return writeMap(*static_cast<const QVariantMap *>(data));
    case QMetaType::QVariantHash:
        return writeHash(*static_cast<const QVariantHash *>(data));
    default:
        return writeCustom(value);
    }
}

void JsonWriter::writeRecord(const OrkaHash &record)
{
    open('{');
    for (const OrkaHash::Entry &entry : record)
        writeMember(entry.first, entry.second);
    close('}');
}

void JsonWriter::writeCustom(const QVariant &value)
{
    const int type = value.userType();
    // The three that every row has are read in place.
    if (type == qMetaTypeId<OrkaHash>()) {
        writeRecord(*static_cast<const OrkaHash *>(value.constData()));
    } else if (type == qMetaTypeId<TrString>()) {
        writeText(static_cast<const TrString *>(value.constData())->toString());
    } else if (type == qMetaTypeId<CMPath>()) {
        writeText(static_cast<const CMPath *>(value.constData())->toEncoded());
    } else if (type == qMetaTypeId<QDBusObjectPath>()) {
        writeText(value.value<QDBusObjectPath>().path());
    } else if (type == qMetaTypeId<QDBusVariant>()) {
        write(value.value<QDBusVariant>().variant());
    } else if (value.canConvert<OrkaHash>()) {
        writeRecord(OrkaHash::fromVariant(value));
    } else if (value.canConvert<QString>()) {
        writeText(value.toString());
    } else {
        append("null");
    }
}
} // namespace

QString orkaToJson(const QVariant &value)
{
    JsonWriter writer;
    writer.write(value);
    return writer.result();
}

QString OrkaHash::toJsonString() const
{
    return orkaToJson(toVariant());
}
