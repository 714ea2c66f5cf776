#include "Table.h"

#include <api/core/CMPath.h>

#include <QRandomGenerator>

class tst_CMPath : public QObject
{
    Q_OBJECT

private slots:
    void encodedForm_data();
    void encodedForm();
    void undecodableTextGivesAnEmptyPath();
    void leavesDecodedTextAsItIs();
    void everyPathSurvivesTheRoundTrip();
    void loneSurrogatesBecomeReplacementCharacters();
    void tellsAnEmptyParameterFromAnAbsentOne();
};

namespace {
QString randomText(QRandomGenerator &random)
{
    // Characters that a grammar, an escape or a converter may trip over, and some harmless ones.
    static const QVector<uint> pieces =
        QStringLiteral("\n %+&=?#/:\"\\aZ0-._~\x7f\u00e4\ufeff\ufffe\uffff\ufffd\u4e2d\u0301"
                       "\U0001F3B5")
            .toUcs4()
        + QVector<uint>{0};
    QVector<uint> text;
    for (int length = random.bounded(8); length > 0; --length)
        text.append(pieces[random.bounded(pieces.size())]);
    return QString::fromUcs4(text.constData(), text.size());
}

CMPath randomPath(QRandomGenerator &random)
{
    CMPath path(randomText(random), randomText(random));
    for (int count = random.bounded(4); count > 0; --count)
        path.addParam(randomText(random), randomText(random));
    return path;
}
} // namespace

void tst_CMPath::encodedForm_data()
{
    columns<CMPath, QString>("path", "encoded");
    row("server", CMPath("upnp", "/uuid:4d69-1").addParam("itemType", "server"),
        "upnp:/uuid:4d69-1?itemType=server");
    row("fixed base", CMPath("upnp", "playlist/prepareItems"), "upnp:playlist/prepareItems");
    row("space and plus", CMPath("upnp", "/a b+c"), "upnp:/a%20b%2Bc");
    row("keys ascend", CMPath("upnp", "/x").addParam("b", "").addParam("a", "/:"),
        "upnp:/x?a=%2F%3A&b=");
    row("umlaut", CMPath("upnp", QString::fromUtf8("/\xc3\xa4")), "upnp:/%C3%A4");
    row("colon in prefix", CMPath("a:b", "c"), "a%3Ab:c");
    row("empty", CMPath(), ":");
}

void tst_CMPath::encodedForm()
{
    QFETCH(CMPath, path);
    QFETCH(QString, encoded);
    QCOMPARE(path.toEncoded(), encoded);
    QVERIFY(CMPath::fromEncoded(encoded) == path);
}

void tst_CMPath::undecodableTextGivesAnEmptyPath()
{
    for (const char *text : {"", "upnp", "upnp?a=b:c", // no colon ahead of the parameters
             "upnp:/a%2", "upnp:/a%zz", "upnp:/100%", "upnp:/a?k=%", "upnp:/a?%=k", // escapes
             "upnp:/%ff", "upnp:/%C3", "upnp:/%ED%A0%80", "upnp:/%C0%AF", // not UTF-8
             "upnp:/a?b", "upnp:/a?", "upnp:/a?b=c&", // parameters without =
             "upnp:/a?b=c&b=c", "upnp:/a?b=c&%62=d"}) // and twice
        QVERIFY2(CMPath::fromEncoded(text).isEmpty(), text);
}

void tst_CMPath::leavesDecodedTextAsItIs()
{
    const CMPath path = CMPath::fromEncoded(QString::fromUtf8("upnp:/\xc3\xa4 +?k=a=b/?c"));
    QCOMPARE(path.base(), QString::fromUtf8("/\xc3\xa4 +"));
    QCOMPARE(path.param("k"), "a=b/?c");
}

void tst_CMPath::everyPathSurvivesTheRoundTrip()
{
    QRandomGenerator random(20261121);
    for (int i = 0; i < 20000; ++i) {
        const CMPath path = randomPath(random);
        const QString encoded = path.toEncoded();
        for (const QChar c : encoded)
            QVERIFY2(c > ' ' && c < QChar(0x7f) && c != '"' && c != '\\', qPrintable(encoded));
        const CMPath decoded = CMPath::fromEncoded(encoded);
        QVERIFY2(decoded == path, qPrintable(encoded));
        QCOMPARE(qHash(decoded, 7), qHash(path, 7));
        // A path inside a path, as the context menu has it.
        const CMPath outer = CMPath("upnp", "context").addParam("path", encoded);
        QCOMPARE(CMPath::fromEncoded(outer.toEncoded()).param("path"), encoded);
    }
}

void tst_CMPath::loneSurrogatesBecomeReplacementCharacters()
{
    // Behind what a converter may take for a byte order mark.
    const QString text = QChar(0xfeff) + QString(QChar(0xd800)) + "a" + QChar(0xdc00)
        + QString::fromUcs4(U"\U0001F3B5", 1) + QChar(0xd83c);
    const QString whole = QStringLiteral("\ufeff\ufffda\ufffd\U0001F3B5\ufffd");
    QCOMPARE(CMPath::fromEncoded(CMPath("p", text).toEncoded()).base(), whole);
}

void tst_CMPath::tellsAnEmptyParameterFromAnAbsentOne()
{
    const CMPath path = CMPath::fromEncoded("upnp:/a?query=");
    QVERIFY(path.hasParam("query"));
    QVERIFY(!path.param("query").isNull());
    QVERIFY(path.param("search").isNull());
    QVERIFY(!CMPath("upnp", "/a").addParam("query", QString()).param("query").isNull());
    QVERIFY(path != path.withoutParams());
    QVERIFY(!CMPath().addParam("a", "").isEmpty());
}

QTEST_APPLESS_MAIN(tst_CMPath)
#include "tst_CMPath.moc"
