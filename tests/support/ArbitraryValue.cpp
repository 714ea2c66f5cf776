#include "ArbitraryValue.h"

const QStringList &hostileTexts()
{
    static const QStringList texts{QString(), " ", "\"", "say \"hello\" \\", "%1 %2 %99", "%",
        "a&b=c?d#e/f;g", "line\nline\r\n", "\x1b[2J\x1b]0;title\x07", "../../etc",
        QString::fromUtf8("Grüße \xf0\x9f\x8e\xb5"), "<item>&amp;</item>", "-1",
        "99999999999999999999", "2005-06", "2026-11-21T01:25:40Z", "0000-00-00",
        "http://10.0.0.1:8200/art.jpg", "file:///etc/passwd", "javascript:alert(1)", "container",
        "audio/", "audio/mpeg", "music", "/com/intel/dLeynaServer/server/1",
        QString(70000, QLatin1Char('x'))};
    return texts;
}
