#include "Soap.h"

#include <QStringList>
#include <QXmlStreamReader>

const QString contentDirectoryType =
    QStringLiteral("urn:schemas-upnp-org:service:ContentDirectory:1");
const QString connectionManagerType =
    QStringLiteral("urn:schemas-upnp-org:service:ConnectionManager:1");

namespace {

QByteArray envelope(const QString &body)
{
    return QByteArrayLiteral(
               "<?xml version=\"1.0\"?><s:Envelope "
               "xmlns:s=\"http://schemas.xmlsoap.org/soap/envelope/\" "
               "s:encodingStyle=\"http://schemas.xmlsoap.org/soap/encoding/\"><s:Body>")
        + body.toUtf8() + QByteArrayLiteral("</s:Body></s:Envelope>");
}

/// "Browse ObjectID>BrowseFlag>… <Result<…": inputs end in ">", outputs in "<".
QString scpdAction(const QString &line)
{
    const QStringList words = line.split(QLatin1Char(' '));
    QString arguments;
    for (int i = 1; i < words.size(); ++i) {
        const QString direction =
            words[i].endsWith(QLatin1Char('>')) ? QStringLiteral("in") : QStringLiteral("out");
        const QString name = words[i].chopped(1);
        arguments +=
            QStringLiteral("<argument><name>%1</name><direction>%2</direction>"
                           "<relatedStateVariable>A_ARG_TYPE_%1</relatedStateVariable></argument>")
                .arg(name, direction);
    }
    return QStringLiteral("<action><name>%1</name><argumentList>%2</argumentList></action>")
        .arg(words[0], arguments);
}

QString service(const QString &type, const QString &shortName)
{
    return QStringLiteral(
        "<service><serviceType>%1</serviceType><serviceId>urn:upnp-org:serviceId:%2</serviceId>"
        "<SCPDURL>/%2.xml</SCPDURL><controlURL>/control/%2</controlURL>"
        "<eventSubURL>/event/%2</eventSubURL></service>")
        .arg(type, shortName);
}

} // namespace

SoapCall readSoapCall(const QByteArray &body)
{
    QXmlStreamReader xml(body);
    SoapCall call;
    while (xml.readNextStartElement() && xml.name() != QLatin1String("Body")) {
    }
    if (!xml.readNextStartElement())
        return call;
    call.action = xml.name().toString();
    while (xml.readNextStartElement()) {
        const QString name = xml.name().toString();
        call.arguments.insert(name, xml.readElementText());
    }
    return call;
}

QByteArray soapAnswer(
    const QString &serviceType, const QString &action, const QMap<QString, QString> &arguments)
{
    QString body = QStringLiteral("<u:%1Response xmlns:u=\"%2\">").arg(action, serviceType);
    for (auto it = arguments.begin(); it != arguments.end(); ++it)
        body += QLatin1Char('<') + it.key() + QLatin1Char('>') + it->toHtmlEscaped()
            + QLatin1String("</") + it.key() + QLatin1Char('>');
    return envelope(body + QStringLiteral("</u:%1Response>").arg(action));
}

QByteArray soapFault(int code, const QString &text)
{
    return envelope(QStringLiteral(
        "<s:Fault><faultcode>s:Client</faultcode><faultstring>UPnPError</faultstring><detail>"
        "<UPnPError xmlns=\"urn:schemas-upnp-org:control-1-0\"><errorCode>%1</errorCode>"
        "<errorDescription>%2</errorDescription></UPnPError></detail></s:Fault>")
                        .arg(code)
                        .arg(text.toHtmlEscaped()));
}

QByteArray deviceDescription(const QString &udn, const QString &friendlyName)
{
    return QStringLiteral(
        "<?xml version=\"1.0\"?><root xmlns=\"urn:schemas-upnp-org:device-1-0\">"
        "<specVersion><major>1</major><minor>0</minor></specVersion><device>"
        "<deviceType>urn:schemas-upnp-org:device:MediaServer:1</deviceType>"
        "<friendlyName>%1</friendlyName><manufacturer>Scripted Makers</manufacturer>"
        "<manufacturerURL>http://makers.example/</manufacturerURL>"
        "<modelDescription>A server that does as it is told</modelDescription>"
        "<modelName>Scripted</modelName><modelNumber>1</modelNumber><modelURL>http://"
        "makers.example/1</modelURL>"
        "<serialNumber>0001</serialNumber><UDN>%2</UDN>"
        "<iconList><icon><mimetype>image/png</mimetype><width>48</width><height>48</height>"
        "<depth>24</depth><url>/icon.png</url></icon></iconList>"
        "<serviceList>%3%4</serviceList><presentationURL>/</presentationURL></device></root>")
        .arg(friendlyName.toHtmlEscaped(), udn,
            service(contentDirectoryType, QStringLiteral("ContentDirectory")),
            service(connectionManagerType, QStringLiteral("ConnectionManager")))
        .toUtf8();
}

QByteArray serviceDescription(bool contentDirectory)
{
    const QString results = QStringLiteral(" Result< NumberReturned< TotalMatches< UpdateID<");
    const QString range = QStringLiteral(" Filter> StartingIndex> RequestedCount> SortCriteria>");
    const QStringList actions = contentDirectory
        ? QStringList{QStringLiteral("Browse ObjectID> BrowseFlag>") + range + results,
            QStringLiteral("Search ContainerID> SearchCriteria>") + range + results,
            QStringLiteral("GetSearchCapabilities SearchCaps<"),
            QStringLiteral("GetSortCapabilities SortCaps<"),
            QStringLiteral("GetSystemUpdateID Id<")}
        : QStringList{QStringLiteral("GetProtocolInfo Source< Sink<")};
    QString list, variables;
    for (const QString &action : actions) {
        list += scpdAction(action);
        for (const QString &word : action.split(QLatin1Char(' ')).mid(1)) {
            const QString variable =
                QStringLiteral("<name>A_ARG_TYPE_%1</name>").arg(word.chopped(1));
            if (!variables.contains(variable))
                variables +=
                    QStringLiteral("<stateVariable sendEvents=\"no\">%1<dataType>string</dataType>"
                                   "</stateVariable>")
                        .arg(variable);
        }
    }
    return QStringLiteral(
        "<?xml version=\"1.0\"?><scpd xmlns=\"urn:schemas-upnp-org:service-1-0\">"
        "<specVersion><major>1</major><minor>0</minor></specVersion>"
        "<actionList>%1</actionList><serviceStateTable>%2</serviceStateTable></scpd>")
        .arg(list, variables)
        .toUtf8();
}
