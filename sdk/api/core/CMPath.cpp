#include "CMPath.h"

#include <QPair>
#include <QStringList>
#include <QTextCodec>
#include <QVector>

#include <algorithm>
#include <optional>

class CMPathData : public QSharedData
{
public:
    QString prefix;
    QString base;
    // Ascending keys, each once; a path has one or two, for which this is smaller than a map.
    QVector<QPair<QString, QString>> params;

    /// Where the key is or would be.
    int indexOf(const QString &key) const
    {
        int index = 0;
        while (index < params.size() && params.at(index).first < key)
            ++index;
        return index;
    }
    bool isAt(int index, const QString &key) const
    {
        return index < params.size() && params.at(index).first == key;
    }
};

namespace {
bool isUnreserved(QChar c)
{
    const ushort code = c.unicode();
    return (code >= 'a' && code <= 'z') || (code >= '0' && code <= '9')
        || (code >= 'A' && code <= 'Z') || code == '-' || code == '.' || code == '_' || code == '~';
}

// A surrogate without its partner becomes the replacement character; Qt's UTF-8 writer would make a
// question mark of it.
QString withWholeCharacters(QString text)
{
    for (int at = 0; at < text.size(); ++at) {
        if (!text.at(at).isSurrogate())
            continue;
        const bool isPair = text.at(at).isHighSurrogate() && at + 1 < text.size()
            && text.at(at + 1).isLowSurrogate();
        if (isPair) {
            ++at;
        } else {
            text[at] = QChar::ReplacementCharacter;
        }
    }
    return text;
}

// Everything but unreserved characters and those in `plain`.
QString percentEncoded(const QString &text, const QByteArray &plain = QByteArray())
{
    const auto isPlain = [&plain](QChar c) {
        return isUnreserved(c) || (c.unicode() < 0x80 && plain.contains(c.toLatin1()));
    };
    if (std::all_of(text.begin(), text.end(), isPlain))
        return text;
    return QString::fromLatin1(withWholeCharacters(text).toUtf8().toPercentEncoding(plain));
}

bool isHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool hasWholeEscapes(const QByteArray &text)
{
    for (int at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 3)) {
        if (at + 2 >= text.size() || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2]))
            return false;
    }
    return true;
}

std::optional<QString> fromStrictUtf8(const QByteArray &bytes)
{
    static QTextCodec *const codec = QTextCodec::codecForName("UTF-8");
    // Without the flag a leading U+FEFF would be taken for a byte order mark and dropped.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        return std::nullopt;
    return text;
}

std::optional<QString> percentDecoded(const QString &text)
{
    if (!text.contains(QLatin1Char('%')))
        return text;
    if (!text.isValidUtf16())
        return std::nullopt;
    const QByteArray bytes = text.toUtf8();
    if (!hasWholeEscapes(bytes))
        return std::nullopt;
    return fromStrictUtf8(QByteArray::fromPercentEncoding(bytes));
}

// Adds "key=value" to `path`; false where it is not that, or the key is there already.
bool addEncodedParam(CMPath &path, const QString &text)
{
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 0)
        return false;
    const auto key = percentDecoded(text.left(equals));
    const auto value = percentDecoded(text.mid(equals + 1));
    if (!key || !value || path.hasParam(*key))
        return false;
    path.addParam(*key, *value);
    return true;
}
} // namespace

CMPath::CMPath()
    : d(new CMPathData)
{
}

CMPath::CMPath(const QString &prefix, const QString &base)
    : CMPath()
{
    d->prefix = prefix;
    d->base = base;
}

CMPath::CMPath(const CMPath &other) = default;
CMPath::CMPath(CMPath &&other) noexcept = default;
CMPath &CMPath::operator=(const CMPath &other) = default;
CMPath &CMPath::operator=(CMPath &&other) noexcept = default;
CMPath::~CMPath() = default;

bool CMPath::isEmpty() const
{
    return d->prefix.isEmpty() && d->base.isEmpty() && d->params.isEmpty();
}

QString CMPath::prefix() const
{
    return d->prefix;
}

QString CMPath::base() const
{
    return d->base;
}

QMap<QString, QString> CMPath::params() const
{
    QMap<QString, QString> params;
    for (const auto &param : d->params)
        params.insert(param.first, param.second);
    return params;
}

QString CMPath::param(const QString &key) const
{
    const int index = d->indexOf(key);
    return d->isAt(index, key) ? d->params.at(index).second : QString();
}

bool CMPath::hasParam(const QString &key) const
{
    return d->isAt(d->indexOf(key), key);
}

CMPath &CMPath::addParam(const QString &key, const QString &value)
{
    // A null value would read as an absent parameter.
    const QString present = value.isNull() ? QStringLiteral("") : value;
    const int index = d->indexOf(key);
    if (d->isAt(index, key)) {
        d->params[index].second = present;
    } else {
        d->params.insert(index, {key, present});
    }
    return *this;
}

CMPath CMPath::withoutParams() const
{
    return CMPath(d->prefix, d->base);
}

QString CMPath::toEncoded() const
{
    QString text = percentEncoded(d->prefix) + QLatin1Char(':') + percentEncoded(d->base, "/:");
    QChar separator = QLatin1Char('?');
    for (const auto &param : d->params) {
        text += separator + percentEncoded(param.first) + QLatin1Char('=')
            + percentEncoded(param.second);
        separator = QLatin1Char('&');
    }
    return text;
}

CMPath CMPath::fromEncoded(const QString &text)
{
    const int query = text.indexOf(QLatin1Char('?'));
    const QString node = text.left(query);
    const int colon = node.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return CMPath();
    const auto prefix = percentDecoded(node.left(colon));
    const auto base = percentDecoded(node.mid(colon + 1));
    if (!prefix || !base)
        return CMPath();
    CMPath path(*prefix, *base);
    if (query < 0)
        return path;
    for (const QString &param : text.mid(query + 1).split(QLatin1Char('&'))) {
        if (!addEncodedParam(path, param))
            return CMPath();
    }
    return path;
}

bool operator==(const CMPath &a, const CMPath &b)
{
    return a.d == b.d
        || (a.d->prefix == b.d->prefix && a.d->base == b.d->base && a.d->params == b.d->params);
}

uint qHash(const CMPath &path, uint seed)
{
    return qHash(path.base(), qHash(path.prefix(), seed)) ^ uint(path.params().size());
}
