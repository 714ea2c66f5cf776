// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/OrkaHash.h>
#include <api/core/TrString.h>

/// Why a request could not be answered: name (for programs), title and message (for people). An
/// error with an empty name is no error.
class ORKA_API_EXPORT CMError : public OrkaHash
{
    ORKA_RECORD(CMError)

    /// With the default name and title.
    CMError(const TrString &message); // NOLINT: meant to convert
    CMError(const QString &name, const TrString &title, const TrString &message);

    static const QString &Name();
    static const QString &Title();
    static const QString &Message();

    static QString DefaultName();
    static TrString DefaultTitle();

    bool isError() const { return !name().isEmpty(); }
    QString name() const;
    TrString title() const;
    TrString message() const;
};

/// An error of the program itself, named "internal"; `message` is not translated.
ORKA_API_EXPORT CMError createErrorInternal(const QString &message);
