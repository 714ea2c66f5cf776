#include "ArbitraryValue.h"

const QStringList &hostileTexts()
{
    static const QStringList texts{QString(), QStringLiteral(" "), QStringLiteral("\""),
        QStringLiteral("say \"hello\" \\"), QStringLiteral("%1 %2 %99"), QStringLiteral("%"),
        QStringLiteral("a&b=c?d#e/f;g"), QStringLiteral("line\nline\r\n"),
        QStringLiteral("\x1b[2J\x1b]0;title\x07"), QStringLiteral("../../etc"),
        QString::fromUtf8("Grüße \xf0\x9f\x8e\xb5"), QStringLiteral("<item>&amp;</item>"),
        QStringLiteral("-1"), QStringLiteral("99999999999999999999"), QStringLiteral("2005-06"),
        QStringLiteral("2026-11-21T01:25:40Z"), QStringLiteral("0000-00-00"),
        QStringLiteral("http://10.0.0.1:8200/art.jpg"), QStringLiteral("file:///etc/passwd"),
        QStringLiteral("javascript:alert(1)"), QStringLiteral("container"),
        QStringLiteral("audio/"), QStringLiteral("audio/mpeg"), QStringLiteral("music"),
        QStringLiteral("/com/intel/dLeynaServer/server/1"), QString(70000, QLatin1Char('x'))};
    return texts;
}
