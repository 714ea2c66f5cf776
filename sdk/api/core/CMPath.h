// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/export.h>

#include <QMap>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>

class CMPathData;

/// Names one node of the content tree: the prefix of its worker, the base below it, and
/// parameters. An implicitly shared value, compared part by part; any thread.
///
/// The encoded form is `prefix:base?key=value&…`, keys ascending. In the base everything but
/// RFC 3986's unreserved characters, "/" and ":" is percent-encoded as UTF-8, elsewhere everything
/// but unreserved; a space is `%20`, "+" stands for itself. `fromEncoded(toEncoded(p)) == p` for
/// every path; a surrogate without its partner is no character and is encoded as U+FFFD.
class ORKA_API_EXPORT CMPath
{
public:
    CMPath();
    CMPath(const QString &prefix, const QString &base);
    CMPath(const CMPath &other);
    CMPath(CMPath &&other) noexcept;
    CMPath &operator=(const CMPath &other);
    CMPath &operator=(CMPath &&other) noexcept;
    ~CMPath();

    /// No prefix, no base and no parameter.
    bool isEmpty() const;
    QString prefix() const;
    /// The part below the worker's prefix, decoded, without parameters: "/uuid:4d69/64".
    QString base() const;
    QMap<QString, QString> params() const;
    /// A null text when there is no such parameter; a present, empty value is empty and not null.
    QString param(const QString &key) const;
    bool hasParam(const QString &key) const;
    /// Replaces the value of a key that is already there. Returns this path.
    CMPath &addParam(const QString &key, const QString &value);
    CMPath withoutParams() const;

    QString toEncoded() const;
    /// The path that `text` encodes, or an empty path, never half of one: without a ":", with a
    /// broken percent escape, with escapes that aren't UTF-8, with a parameter that has no "=" or
    /// comes twice. Characters that need no decoding are taken as they are.
    static CMPath fromEncoded(const QString &text);

private:
    QSharedDataPointer<CMPathData> d;
    friend ORKA_API_EXPORT bool operator==(const CMPath &a, const CMPath &b);
};

ORKA_API_EXPORT bool operator==(const CMPath &a, const CMPath &b);
inline bool operator!=(const CMPath &a, const CMPath &b)
{
    return !(a == b);
}
ORKA_API_EXPORT uint qHash(const CMPath &path, uint seed = 0);

Q_DECLARE_TYPEINFO(CMPath, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(CMPath)
