#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// A SOAP call that a scripted server got, answered or not.
struct SoapCall
{
    QString action; ///< empty where the text wasn't a SOAP call
    QMap<QString, QString> arguments;
};

SoapCall readSoapCall(const QByteArray &body);
/// The answer of an action; `arguments` in the order of their names.
QByteArray soapAnswer(
    const QString &serviceType, const QString &action, const QMap<QString, QString> &arguments);
QByteArray soapFault(int code, const QString &text);

/// The description of a media server and of either of its services.
QByteArray deviceDescription(const QString &udn, const QString &friendlyName);
QByteArray serviceDescription(bool contentDirectory);

extern const QString contentDirectoryType;
extern const QString connectionManagerType;
