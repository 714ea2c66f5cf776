#include <api/core/CMPath.h>

#include <QRandomGenerator>
#include <QTest>

class tst_CMPath : public QObject
{
    Q_OBJECT

private slots:
    void undecodableTextGivesAnEmptyPath();
    void everyPathSurvivesTheRoundTrip();
    void escapesWhatIsNotPlain();
};

void tst_CMPath::undecodableTextGivesAnEmptyPath()
{
    for (const char *text : {"", "upnp?a=b:c", // no colon ahead of the parameters
             "upnp:/a%2", "upnp:/a%zz", "upnp:/a?k=%", // escapes
             "upnp:/%ff", "upnp:/%C3", "upnp:/%ED%A0%80", // not UTF-8
             "upnp:/a?b", "upnp:/a?b=c&", "upnp:/a?b=c&%62=d"}) // without "=", and twice
        QVERIFY2(CMPath::fromEncoded(text).isEmpty(), text);
}

void tst_CMPath::everyPathSurvivesTheRoundTrip()
{
    // What a grammar, an escape or a converter may trip over, and some harmless characters.
    const QVector<uint> pieces =
        QStringLiteral("\n %+&=?#/:\"\\aZ0-._~\x7f\u00e4\ufeff\u4e2d\U0001F3B5").toUcs4()
        + QVector<uint>{0};
    QRandomGenerator random(20261121);
    const auto text = [&pieces, &random] {
        QVector<uint> some;
        for (int length = random.bounded(8); length > 0; --length)
            some.append(pieces[random.bounded(pieces.size())]);
        return QString::fromUcs4(some.constData(), some.size());
    };
    for (int i = 0; i < 3000; ++i) {
        const CMPath path = CMPath(text(), text()).addParam(text(), text()).addParam("", text());
        const QString encoded = path.toEncoded();
        QVERIFY2(CMPath::fromEncoded(encoded) == path, qPrintable(encoded));
        for (const QChar c : encoded)
            QVERIFY2(c > ' ' && c < QChar(0x7f) && c != '"' && c != '\\', qPrintable(encoded));
    }
}

void tst_CMPath::escapesWhatIsNotPlain()
{
    CMPath path("a:b", QString::fromUtf8("/uuid:\xc3\xa4 b+c"));
    path.addParam("b", QString()).addParam("a", "/:");
    QCOMPARE(path.toEncoded(), "a%3Ab:/uuid:%C3%A4%20b%2Bc?a=%2F%3A&b=");
    QVERIFY(!path.param("b").isNull() && path.param("c").isNull());
    QCOMPARE(CMPath::fromEncoded("upnp:/b +?k=a=b/?c").toEncoded(), "upnp:/b%20%2B?k=a%3Db%2F%3Fc");
}

QTEST_APPLESS_MAIN(tst_CMPath)
#include "tst_CMPath.moc"
