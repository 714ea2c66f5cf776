#include "Dice.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

QString Dice::text()
{
    static const QStringList texts{QString(), "\"", "say \"hello\" \\", "%1 %2 %99",
        "a&b=c?d#e/f;g", "line\nline\r\n", "\x1b[2J\x1b]0;title\x07", "../../etc",
        QString::fromUtf8("Grüße \xf0\x9f\x8e\xb5"), "<item>&amp;</item>", "-1",
        "99999999999999999999", "2005-06", "2026-11-21T01:25:40Z", "http://10.0.0.1:8200/art.jpg",
        "file:///etc/passwd", "container", "audio/mpeg", "music",
        "/com/intel/dLeynaServer/server/1", QString(70000, QLatin1Char('x'))};
    return pick(texts);
}

QVariant Dice::value(int depth)
{
    const quint64 bits = m_engine();
    switch (below(depth > 0 ? 11 : 8)) {
    case 0:
        return text();
    case 1:
        return int(bits);
    case 2:
        return bits;
    case 3:
        return double(bits) * 1e300;
    case 4:
        return bits % 2 == 0;
    case 5:
        return text().toUtf8();
    case 6:
        return QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a/b_c")));
    case 7:
        return chance(50) ? QStringList() : QStringList{text(), text()};
    case 8:
        return QVariantMap{{text(), value(depth - 1)}, {text(), value(depth - 1)}};
    case 9:
        return QVariantList{value(depth - 1), value(depth - 1)};
    default:
        return QVariant::fromValue(QDBusVariant(value(depth - 1)));
    }
}
