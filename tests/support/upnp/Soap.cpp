#include "Soap.h"

#include <QXmlStreamReader>

namespace {

constexpr const char *contentDirectoryType = "urn:schemas-upnp-org:service:ContentDirectory:1";

QByteArray envelope(const QString &body)
{
    return R"(<?xml version="1.0"?><s:Envelope xmlns:s="http://schemas.xmlsoap.org/soap/envelope/" s:encodingStyle="http://schemas.xmlsoap.org/soap/encoding/"><s:Body>)"
        + body.toUtf8() + "</s:Body></s:Envelope>";
}

} // namespace

SoapCall readSoapCall(const QByteArray &body)
{
    QXmlStreamReader xml(body);
    SoapCall call;
    while (xml.readNextStartElement() && xml.name() != "Body") {
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

QByteArray soapAnswer(const QString &action, const QMap<QString, QString> &arguments)
{
    QString body = "<u:%1Response xmlns:u=\"%2\">"_s.arg(action, QString(contentDirectoryType));
    for (auto it = arguments.begin(); it != arguments.end(); ++it)
        body += '<' + it.key() + '>' + it->toHtmlEscaped() + "</" + it.key() + '>';
    return envelope(body + "</u:%1Response>"_s.arg(action));
}

QByteArray soapFault(int code, const QString &text)
{
    return envelope(
        R"(<s:Fault><faultcode>s:Client</faultcode><faultstring>UPnPError</faultstring><detail>
<UPnPError xmlns="urn:schemas-upnp-org:control-1-0"><errorCode>%1</errorCode>
<errorDescription>%2</errorDescription></UPnPError></detail></s:Fault>)"_s.arg(code)
            .arg(text.toHtmlEscaped()));
}

QByteArray deviceDescription(const QString &udn, const QString &friendlyName)
{
    return R"(<?xml version="1.0"?><root xmlns="urn:schemas-upnp-org:device-1-0">
<specVersion><major>1</major><minor>0</minor></specVersion><device>
<deviceType>urn:schemas-upnp-org:device:MediaServer:1</deviceType>
<friendlyName>%1</friendlyName><manufacturer>Scripted Makers</manufacturer>
<manufacturerURL>http://makers.example/</manufacturerURL>
<modelDescription>A server that does as it is told</modelDescription>
<modelName>Scripted</modelName><modelNumber>1</modelNumber>
<modelURL>http://makers.example/1</modelURL><serialNumber>0001</serialNumber><UDN>%2</UDN>
<iconList><icon><mimetype>image/png</mimetype><width>48</width><height>48</height>
<depth>24</depth><url>/icon.png</url></icon></iconList><serviceList>
<service><serviceType>urn:schemas-upnp-org:service:ConnectionManager:1</serviceType>
<serviceId>urn:upnp-org:serviceId:ConnectionManager</serviceId><SCPDURL>/none.xml</SCPDURL>
<controlURL>/none</controlURL><eventSubURL>/none</eventSubURL></service>
<service><serviceType>%3</serviceType><serviceId>urn:upnp-org:serviceId:ContentDirectory</serviceId>
<SCPDURL>/none.xml</SCPDURL><controlURL>/control</controlURL><eventSubURL>/none</eventSubURL>
</service></serviceList><presentationURL>/</presentationURL></device></root>)"_s
        .arg(friendlyName.toHtmlEscaped(), udn, QString(contentDirectoryType))
        .toUtf8();
}
