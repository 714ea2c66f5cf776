// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/export.h>

#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>
#include <QStringList>

class TrStringData;

/// The class (translation context) of a function, from the compiler's pretty function text:
/// "bool Class::f(int) const" gives "Class", a free function an empty text. Any thread.
ORKA_API_EXPORT QByteArray trExtractContext(const char *prettyFunction);

/// A translatable text whose context is the class of the enclosing member function. lupdate finds
/// it with `-tr-function-alias tr+=ORKA_TR`.
#define ORKA_TR(sourceText) TrString(trExtractContext(Q_FUNC_INFO), sourceText)

/// A text for people: either plain, or translated at the moment it is read. An implicitly shared
/// value; any thread.
class ORKA_API_EXPORT TrString
{
public:
    TrString();
    /// A text that is the same in every language.
    TrString(const QString &plain); // NOLINT: meant to convert
    /// `sourceText` in `context`; `args` replace %1, %2 … once each and are never searched for
    /// markers themselves; `n` chooses the plural form, -1 for none.
    TrString(const QByteArray &context, const char *sourceText,
        const QStringList &args = QStringList(), int n = -1);
    TrString(const TrString &other);
    TrString(TrString &&other) noexcept;
    TrString &operator=(const TrString &other);
    TrString &operator=(TrString &&other) noexcept;
    ~TrString();

    bool isEmpty() const;
    /// In the language of the installed Qt translators.
    QString toString() const;
    /// As it was written, arguments in place: what programs compare and logs show.
    QString sourceString() const;
    QByteArray context() const;

private:
    QSharedDataPointer<TrStringData> d;
    friend ORKA_API_EXPORT bool operator==(const TrString &a, const TrString &b);
};

ORKA_API_EXPORT bool operator==(const TrString &a, const TrString &b);
inline bool operator!=(const TrString &a, const TrString &b)
{
    return !(a == b);
}

Q_DECLARE_TYPEINFO(TrString, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(TrString)
