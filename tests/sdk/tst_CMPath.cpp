#include <api/core/CMPath.h>

#include <QRandomGenerator>
#include <QTest>

class tst_CMPath : public QObject
{
    Q_OBJECT

private slots:
    void encodedForm_data();
    void encodedForm();
    void undecodableTextGivesAnEmptyPath_data();
    void undecodableTextGivesAnEmptyPath();
    void leavesDecodedTextAsItIs();
    void everyPathSurvivesTheRoundTrip();
    void loneSurrogatesBecomeReplacementCharacters();
    void tellsAnEmptyParameterFromAnAbsentOne();
    void copiesAreIndependent();
};

namespace {
// Characters that a grammar, an escape or a converter may trip over, and some that are harmless.
const ushort pieces[] = {0, '\n', ' ', '%', '+', '&', '=', '?', '#', '/', ':', '"', '\\', 'a', 'Z',
    '0', '-', '.', '_', '~', 0x7f, 0xe4, 0xfeff, 0xfffe, 0xffff, 0xfffd, 0x4e2d, 0x0301};

QString randomText(QRandomGenerator &random)
{
    QString text;
    for (int length = random.bounded(8); length > 0; --length) {
        const int piece = random.bounded(int(std::size(pieces)) + 1);
        if (piece < int(std::size(pieces)))
            text += QChar(pieces[piece]);
        else
            text += QString::fromUcs4(U"\U0001F3B5", 1);
    }
    return text;
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
    QTest::addColumn<CMPath>("path");
    QTest::addColumn<QString>("encoded");

    const QString upnp = QStringLiteral("upnp");
    QTest::newRow("server") << CMPath(upnp, "/uuid:4d69-1").addParam("itemType", "server")
                            << "upnp:/uuid:4d69-1?itemType=server";
    QTest::newRow("fixed base") << CMPath(upnp, "playlist/prepareItems")
                                << "upnp:playlist/prepareItems";
    QTest::newRow("space and plus") << CMPath(upnp, "/a b+c") << "upnp:/a%20b%2Bc";
    QTest::newRow("keys ascend") << CMPath(upnp, "/x").addParam("b", "").addParam("a", "/:")
                                 << "upnp:/x?a=%2F%3A&b=";
    QTest::newRow("umlaut") << CMPath(upnp, QString::fromUtf8("/\xc3\xa4")) << "upnp:/%C3%A4";
    QTest::newRow("colon in prefix") << CMPath("a:b", "c") << "a%3Ab:c";
    QTest::newRow("empty") << CMPath() << ":";
}

void tst_CMPath::encodedForm()
{
    QFETCH(CMPath, path);
    QFETCH(QString, encoded);
    QCOMPARE(path.toEncoded(), encoded);
    QVERIFY(CMPath::fromEncoded(encoded) == path);
}

void tst_CMPath::undecodableTextGivesAnEmptyPath_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("nothing") << QString();
    QTest::newRow("no colon") << "upnp";
    QTest::newRow("colon in the parameters only") << "upnp?a=b:c";
    QTest::newRow("half an escape") << "upnp:/a%2";
    QTest::newRow("escape without digits") << "upnp:/a%zz";
    QTest::newRow("lone percent") << "upnp:/100%";
    QTest::newRow("not UTF-8") << "upnp:/%ff";
    QTest::newRow("UTF-8 cut off") << "upnp:/%C3";
    QTest::newRow("encoded surrogate") << "upnp:/%ED%A0%80";
    QTest::newRow("overlong") << "upnp:/%C0%AF";
    QTest::newRow("broken parameter") << "upnp:/a?k=%";
    QTest::newRow("broken key") << "upnp:/a?%=k";
    QTest::newRow("parameter without =") << "upnp:/a?b";
    QTest::newRow("question mark alone") << "upnp:/a?";
    QTest::newRow("trailing &") << "upnp:/a?b=c&";
    QTest::newRow("parameter twice") << "upnp:/a?b=c&b=c";
    QTest::newRow("parameter twice, once encoded") << "upnp:/a?b=c&%62=d";
}

void tst_CMPath::undecodableTextGivesAnEmptyPath()
{
    QFETCH(QString, text);
    const CMPath path = CMPath::fromEncoded(text);
    QVERIFY2(path.isEmpty(), qPrintable(path.toEncoded()));
}

void tst_CMPath::leavesDecodedTextAsItIs()
{
    const CMPath path = CMPath::fromEncoded(QString::fromUtf8("upnp:/\xc3\xa4 +?k=a=b/?c"));
    QCOMPARE(path.base(), QString::fromUtf8("/\xc3\xa4 +"));
    QCOMPARE(path.param("k"), QStringLiteral("a=b/?c"));
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

void tst_CMPath::copiesAreIndependent()
{
    const CMPath path("upnp", "/a");
    CMPath copy = path;
    copy.addParam("k", "1").addParam("k", "2");
    QVERIFY(path.params().isEmpty());
    QCOMPARE(copy.params(), (QMap<QString, QString>{{"k", "2"}}));
    const CMPath moved = std::move(copy);
    QCOMPARE(moved.param("k"), QStringLiteral("2"));
}

QTEST_APPLESS_MAIN(tst_CMPath)
#include "tst_CMPath.moc"
