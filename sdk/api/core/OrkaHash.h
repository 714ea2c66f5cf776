// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/export.h>

#include <QHash>
#include <QMetaType>
#include <QPair>
#include <QString>
#include <QVariant>
#include <QVector>

/// A record: text keys with variant values, implicitly shared. All records of the SDK are one of
/// these with named accessors. Meant for a dozen keys: a look-up is linear, and keys that come
/// from the records' static functions compare by address. Keys keep the order in which they were
/// first set. A record inside a variant is always stored as `OrkaHash`. Not locked: one thread at
/// a time for each copy.
class ORKA_API_EXPORT OrkaHash
{
public:
    /// A key and its value.
    using Entry = QPair<QString, QVariant>;

    OrkaHash() = default;
    OrkaHash(const QVariantHash &hash); // NOLINT: meant to convert
    /// The record that `value` holds: an `OrkaHash`, a variant hash or a variant map; else empty.
    static OrkaHash fromVariant(const QVariant &value);

    bool isEmpty() const { return m_entries.isEmpty(); }
    int size() const { return m_entries.size(); }
    bool contains(const QString &key) const { return indexOf(key) >= 0; }
    QStringList keys() const;
    /// The entries in the order in which their keys were first set.
    QVector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    QVector<Entry>::const_iterator end() const { return m_entries.end(); }
    /// An absent key gives an invalid variant.
    QVariant value(const QString &key) const;
    /// The value where it is, until the record changes; null for an absent key.
    const QVariant *find(const QString &key) const;
    QVariant *find(const QString &key);
    void setValue(const QString &key, QVariant value);
    void remove(const QString &key);

    QVariantHash toHash() const;
    /// A variant that holds this record.
    QVariant toVariant() const;
    operator QVariant() const { return toVariant(); } // NOLINT: meant to convert

    /// The record as one JSON object (RFC 8259), UTF-16. Paths are written encoded, translatable
    /// texts in the current language, an invalid variant as null, a number that is not finite as
    /// null.
    QString toJsonString() const;

    friend bool operator==(const OrkaHash &a, const OrkaHash &b) { return a.equals(b); }
    friend bool operator!=(const OrkaHash &a, const OrkaHash &b) { return !a.equals(b); }

private:
    int indexOf(const QString &key) const;
    bool equals(const OrkaHash &other) const;

    QVector<Entry> m_entries;
};

/// A list of records of one type; inside a variant it is a plain list of records.
template<typename Record>
class OrkaList : public QVariantList
{
public:
    OrkaList() = default;
    explicit OrkaList(const QVariantList &list)
        : QVariantList(list)
    {
    }
    void append(const Record &record) { QVariantList::append(record.toVariant()); }
    Record at(int index) const { return Record(OrkaHash::fromVariant(QVariantList::at(index))); }
    Record first() const { return at(0); }
};

/// Any value as JSON text: what `OrkaHash::toJsonString()` writes for one of its values.
ORKA_API_EXPORT QString orkaToJson(const QVariant &value);

Q_DECLARE_TYPEINFO(OrkaHash, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(OrkaHash)

/// Boilerplate of a record class: made empty, or from an existing record.
#define ORKA_RECORD(Class)        \
public:                           \
    Class() = default;            \
    Class(const OrkaHash &record) \
        : OrkaHash(record)        \
    {                             \
    }
