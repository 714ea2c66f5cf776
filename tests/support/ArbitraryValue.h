#pragma once

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

/// Texts that break what isn't careful: quotes, escapes, separators, markers, terminal control.
const QStringList &hostileTexts();

/// A value of any type that D-Bus can carry, chosen by `source`: a dice, or a fuzzer's bytes. A
/// source has `quint32 below(quint32 bound)`, from 0 to `bound` exclusive, and `QString text()`.
template<typename Source>
QVariant arbitraryValue(Source &source, int depth = 2);

template<typename Source>
QVariant arbitraryNumber(Source &source)
{
    const quint32 bits = source.below(0xffffffffu);
    switch (source.below(8)) {
    case 0:
        return int(bits);
    case 1:
        return bits;
    case 2:
        return qint64(bits) << 31;
    case 3:
        return ~quint64(bits);
    case 4:
        return QVariant::fromValue(short(bits));
    case 5:
        return QVariant::fromValue(uchar(bits));
    case 6:
        return bits % 2 == 0;
    default:
        return double(bits) * 1e300 * (bits % 3 - 1.0);
    }
}

template<typename Source>
QVariantMap arbitraryMap(Source &source, int depth)
{
    QVariantMap map;
    for (quint32 left = source.below(4); left > 0; --left) {
        const QString key = source.text();
        map.insert(key, arbitraryValue(source, depth));
    }
    return map;
}

template<typename Source>
QVariant arbitraryValue(Source &source, int depth)
{
    switch (source.below(depth > 0 ? 9 : 5)) {
    case 0:
        return source.text();
    case 1:
        return arbitraryNumber(source);
    case 2:
        return source.text().toUtf8();
    case 3:
        return QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a/b_c")));
    case 4:
        return QStringList{source.text(), source.text()};
    case 5:
        return QStringList();
    case 6:
        return arbitraryMap(source, depth - 1);
    case 7: {
        const QVariant first = arbitraryValue(source, depth - 1);
        return QVariantList{first, arbitraryValue(source, depth - 1)};
    }
    default:
        return QVariant::fromValue(QDBusVariant(arbitraryValue(source, depth - 1)));
    }
}
