#include "MediaServices.h"
#include "NamesOnBus.h"
#include "Table.h"
#include "TestNamespace.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QRegularExpression>

/// What a client may expect of the media service on the wire. One table, for the tests' fake and
/// for the bridge: what the plug-in is tested against is what it meets.
class tst_Contract : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_services.clear(); }
    void answers_data();
    void answers();
    void tellsOfALostServer();

public slots:
    void onLost(const QDBusObjectPath &path) { m_lost.append(path.path()); }

private:
    QMap<QString, std::shared_ptr<ServiceUnderTest>> m_services;
    QStringList m_lost;
};

namespace {

const QString server = FakeTree::serverPath("uuid:c0");
const QString deaf = FakeTree::serverPath("uuid:c1");

QString object(const QByteArray &id)
{
    return FakeTree::objectPath(server, id);
}

QDBusMessage call(ServiceUnderTest *service, const QString &path, const QString &interface,
    const QString &member, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(names::service, path, interface, member);
    message.setArguments(arguments);
    return Call(service->bus().asyncCall(message)).reply();
}

QString signatureOf(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return value.value<QDBusArgument>().currentSignature();
    return QString::fromLatin1(QDBusMetaType::typeToSignature(value.userType()));
}

/// "Album:s Artist:s …".
QString keysText(const QVariantMap &map)
{
    QStringList keys;
    for (auto it = map.begin(); it != map.end(); ++it)
        keys.append(it.key() + ':' + signatureOf(it.value()));
    return keys.join(' ');
}

QString valueText(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value.type() == QVariant::StringList ? value.toStringList().join(',') : value.toString();
}

/// The reply's signature and what it holds, or the error's name.
QString shape(const QDBusMessage &reply)
{
    if (reply.type() == QDBusMessage::ErrorMessage)
        return reply.errorName();
    QString text = reply.signature();
    for (const QVariant &value : reply.arguments()) {
        if (value.userType() == qMetaTypeId<QDBusVariant>()) {
            const QVariant inner = value.value<QDBusVariant>().variant();
            text += ' ' + signatureOf(inner) + ' ' + valueText(inner);
        } else if (signatureOf(value) == "aa{sv}") {
            const auto rows = qdbus_cast<QList<QVariantMap>>(value);
            text += QStringLiteral(" %1 rows").arg(rows.size());
            text += rows.isEmpty() ? QString() : " {" + keysText(rows.first()) + '}';
            text += rows.isEmpty() ? QString() : ' ' + rows.first().value("DisplayName").toString();
        } else if (signatureOf(value) == "a{sv}") {
            text += " {" + keysText(qdbus_cast<QVariantMap>(value)) + '}';
        } else if (value.type() == QVariant::UInt) {
            text += ' ' + value.toString();
        }
    }
    return text;
}

struct Expectation
{
    const char *name;
    QString path;
    QString interface;
    QString member;
    QVariantList arguments;
    /// The shape; behind "…" stand keys that the answer has among others.
    QString expected;
};

const QStringList title{"DisplayName"};
const QStringList few{"Type", "Path", "DisplayName", "displayName", "NoSuch"};

Expectation get(const char *name, const QString &path, const QString &interface,
    const QString &property, const QString &expected)
{
    return {name, path, names::properties, "Get", {interface, property}, expected};
}

Expectation getAll(
    const char *name, const QString &path, const QString &interface, const QString &expected)
{
    return {name, path, names::properties, "GetAll", {interface}, expected};
}

Expectation list(const char *name, const QString &path, uint offset, uint max,
    const QStringList &filter, const QString &expected)
{
    return {name, path, names::container, "ListChildren", {offset, max, filter}, expected};
}

Expectation search(const char *name, const QString &path, const QString &query, uint offset,
    uint max, const QString &expected)
{
    return {
        name, path, names::container, "SearchObjectsEx", {query, offset, max, title, ""}, expected};
}

QVector<Expectation> propertyExpectations()
{
    return {
        {"servers", names::managerPath, names::manager, "GetServers", {}, "ao"},
        get("friendly name", server, names::device, "FriendlyName", "v s NAS"),
        get("no such property", server, names::device, "NoSuch", names::unknownProperty),
        get("count, of the object", object("n"), names::object, "ChildCount", "v u 25"),
        get("count of nothing", object("e"), names::object, "ChildCount", "v u 0"),
        get("type", object("t"), names::object, "Type", "v s music"),
        get("path", object("t"), names::object, "Path", "v o " + object("t")),
        get("album", object("t"), names::item, "Album", "v s Alb"),
        get("of an unknown object", object("x"), names::object, "DisplayName",
            names::operationFailed),
        get("of an unknown server", FakeTree::serverPath("uuid:none"), names::object, "Type",
            names::unknownMethod),
        get("of a malformed path", server + "/xyz", names::object, "DisplayName", names::badPath),
        getAll("everything of a server", server, "",
            "a{sv} … ChildCount:u DisplayName:s FriendlyName:s Path:o SearchCaps:as Type:s UDN:s"),
        getAll("everything of a folder", object("n"), "",
            "a{sv} … ChildCount:u DisplayName:s Parent:o Path:o Type:s"),
        getAll("everything of a track", object("t"), "",
            "a{sv} … Album:s Artist:s Date:s DisplayName:s Duration:i Genre:s MIMEType:s Parent:o "
            "Path:o TrackNumber:i Type:s URLs:as"),
        getAll("a folder is no item", object("n"), names::item, names::unknownInterface),
        getAll("a track is no container", object("t"), names::container, names::unknownInterface),
        getAll("an interface nobody has", object("t"), "a.b", names::unknownInterface),
    };
}

QVector<Expectation> listExpectations()
{
    const QString row = " rows {DisplayName:s} Track 000%1";
    const auto rows = [&row](int count, const char *first) {
        return QStringLiteral("aa{sv} %1").arg(count) + row.arg(first);
    };
    const auto found = [&rows](int count, const char *first, int total) {
        return QStringLiteral("aa{sv}u") + rows(count, first).mid(6)
            + QStringLiteral(" %1").arg(total);
    };
    return {
        list("all", object("n"), 0, 0, title, rows(25, "01")),
        list("behind the end", object("n"), 25, 10, title, "aa{sv} 0 rows"),
        list("an empty folder", object("e"), 0, 10, title, "aa{sv} 0 rows"),
        list("a server", server, 0, 1, title, "aa{sv} 1 rows {DisplayName:s} Numbers"),
        list("properties asked for", object("n"), 0, 1, few,
            "aa{sv} 1 rows {DisplayName:s Path:o Type:s} Track 00001"),
        list("no property", object("n"), 0, 2, {}, "aa{sv} 2 rows {} "),
        list("all properties", object("n"), 0, 1, {"*"},
            "aa{sv} … DisplayName:s MIMEType:s Path:o Type:s URLs:as"),
        list("of an unknown object", object("x"), 0, 1, title, names::operationFailed),
        search("one", server, "DisplayName contains \"00003\"", 0, 9, found(1, "03", 1)),
        search("a page of many", object("n"), "DisplayName contains \"Track\"", 10, 5,
            found(5, "11", 25)),
        search("sound", object("n"), "(Type derivedfrom \"audio\")", 0, 100, found(25, "01", 25)),
        search("none", server, "DisplayName contains \"nobody\"", 0, 9, "aa{sv}u 0 rows 0"),
        search("escaped quotes", server, "DisplayName contains \"Say \\\"Hello\\\"\"", 0, 9,
            "aa{sv}u 1 rows {DisplayName:s} Say \"Hello\" 1"),
        search("an unknown property", server, "Mood contains \"x\"", 0, 9, names::badQuery),
        search(
            "where nobody can search", deaf, "Artist contains \"x\"", 0, 9, names::operationFailed),
    };
}

} // namespace

void tst_Contract::initTestCase()
{
    m_services.insert("fake", std::make_shared<FakeUnderTest>());
    m_services.insert("bridge", std::make_shared<BridgeUnderTest>());
}

void tst_Contract::answers_data()
{
    columns<QString, QString, QString, QString, QVariantList, QString>(
        "service", "path", "interface", "member", "arguments", "expected");
    for (const QString &service : m_services.keys()) {
        for (const Expectation &e : propertyExpectations() + listExpectations()) {
            QTest::addRow("%s: %s: %s", qPrintable(service), qPrintable(e.member), e.name)
                << service << e.path << e.interface << e.member << e.arguments << e.expected;
        }
    }
}

void tst_Contract::answers()
{
    QFETCH(QString, service);
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, expected);
    const QString got = shape(call(m_services[service].get(), path, interface, member, arguments));
    const QString start = expected.section(QStringLiteral(" … "), 0, 0);
    const QString keys = expected.section(QStringLiteral(" … "), 1);
    if (keys.isEmpty()) {
        QCOMPARE(got, expected);
        return;
    }
    QVERIFY2(got.startsWith(start + ' '), qPrintable(got));
    for (const QString &key : keys.split(' '))
        QVERIFY2(got.contains(QRegularExpression("[ {]" + key + "[ }]")),
            qPrintable(key + " in " + got));
}

void tst_Contract::tellsOfALostServer()
{
    for (const auto &service : m_services) {
        m_lost.clear();
        service->bus().connect(names::service, names::managerPath, names::manager, "LostServer",
            this, SLOT(onLost(QDBusObjectPath)));
        service->loseSecond();
        QTRY_COMPARE(m_lost, QStringList{deaf});
        const QDBusMessage reply =
            call(service.get(), names::managerPath, names::manager, "GetServers", {});
        const auto left = qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().value(0));
        QCOMPARE(left, QList<QDBusObjectPath>{QDBusObjectPath(server)});
    }
}

BRIDGE_TEST_MAIN(tst_Contract)
#include "tst_Contract.moc"
