#include "OrkaHash.h"

#include <QVariantHash>

#include <algorithm>
#include <utility>

namespace {
// Most records have no more keys; growing step by step would move them three times.
constexpr int usualSize = 8;
} // namespace

OrkaHash::OrkaHash(const QVariantHash &hash)
{
    // The order of a hash differs from run to run; a record made from one doesn't.
    QStringList keys = hash.keys();
    keys.sort();
    m_entries.reserve(keys.size());
    for (const QString &key : qAsConst(keys))
        m_entries.append({key, hash.value(key)});
}

OrkaHash OrkaHash::fromVariant(const QVariant &value)
{
    return value.value<OrkaHash>();
}

QStringList OrkaHash::keys() const
{
    QStringList keys;
    keys.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        keys.append(entry.first);
    return keys;
}

QVariant OrkaHash::value(const QString &key) const
{
    const QVariant *const found = find(key);
    return found ? *found : QVariant();
}

const QVariant *OrkaHash::find(const QString &key) const
{
    const int index = indexOf(key);
    return index < 0 ? nullptr : &m_entries.at(index).second;
}

QVariant *OrkaHash::find(const QString &key)
{
    const int index = indexOf(key);
    return index < 0 ? nullptr : &m_entries[index].second;
}

void OrkaHash::setValue(const QString &key, QVariant value)
{
    const int index = indexOf(key);
    if (index >= 0) {
        m_entries[index].second = std::move(value);
        return;
    }
    if (m_entries.isEmpty())
        m_entries.reserve(usualSize);
    // A pair made of both would copy the value.
    m_entries.append(Entry(key, QVariant()));
    m_entries.last().second = std::move(value);
}

void OrkaHash::remove(const QString &key)
{
    const int index = indexOf(key);
    if (index >= 0)
        m_entries.remove(index);
}

QVariantHash OrkaHash::toHash() const
{
    QVariantHash hash;
    hash.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        hash.insert(entry.first, entry.second);
    return hash;
}

QVariant OrkaHash::toVariant() const
{
    return QVariant::fromValue<OrkaHash>(*this);
}

int OrkaHash::indexOf(const QString &key) const
{
    const Entry *const first = m_entries.constData();
    const Entry *const end = first + m_entries.size();
    for (const Entry *entry = first; entry != end; ++entry) {
        const QString &candidate = entry->first;
        if (candidate.isSharedWith(key) || (candidate.size() == key.size() && candidate == key))
            return int(entry - first);
    }
    return -1;
}

bool OrkaHash::equals(const OrkaHash &other) const
{
    if (m_entries.constData() == other.m_entries.constData())
        return true;
    const auto isInOther = [&other](const Entry &entry) {
        const int index = other.indexOf(entry.first);
        return index >= 0 && other.m_entries.at(index).second == entry.second;
    };
    return size() == other.size() && std::all_of(m_entries.begin(), m_entries.end(), isInOther);
}
