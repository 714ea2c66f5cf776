#pragma once

#include <QString>

/// Defines one of a record's static key functions. A key is one constant for the whole process, so
/// look-ups find it by its address.
#define ORKA_RECORD_KEY(Class, function, text)           \
    const QString &Class::function()                     \
    {                                                    \
        static const QString key = QStringLiteral(text); \
        return key;                                      \
    }
