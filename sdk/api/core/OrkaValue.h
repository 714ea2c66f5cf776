// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/OrkaHash.h>
#include <api/core/OrkaNetworkInfo.h>

/// A value of the SDK's value store: a record with one key, which names the value's kind.
class ORKA_API_EXPORT OrkaValue : public OrkaHash
{
    ORKA_RECORD(OrkaValue)

    /// Text.
    static const QString &String_();
    static const QString &NetworkInfo();

    void setString_(const QString &text) { setValue(String_(), text); }
    void setNetworkInfo(const OrkaNetworkInfo &info) { setValue(NetworkInfo(), info.toVariant()); }

    QString string_() const { return value(String_()).toString(); }
    OrkaNetworkInfo networkInfo() const { return fromVariant(value(NetworkInfo())); }
};

Q_DECLARE_METATYPE(OrkaValue)
