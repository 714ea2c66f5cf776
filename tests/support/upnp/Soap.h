#pragma once

#include "Text.h"

#include <QByteArray>
#include <QMap>

/// A SOAP call that a scripted server got, answered or not.
struct SoapCall
{
    QString action; ///< empty where the text wasn't a SOAP call
    QMap<QString, QString> arguments;
};

SoapCall readSoapCall(const QByteArray &body);
/// The answer of an action; `arguments` in the order of their names.
QByteArray soapAnswer(const QString &action, const QMap<QString, QString> &arguments);
QByteArray soapFault(int code, const QString &text);

/// The description of a media server whose content directory is called at /control.
QByteArray deviceDescription(const QString &udn, const QString &friendlyName);
