#include "tree/ArrangedRows.h"

#include "Failure.h"
#include "output/TextOutput.h"

#include <QCollator>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace {

/// A row beside what it is sorted by.
struct Keyed
{
    std::vector<QCollatorSortKey> texts;
    std::vector<long long> numbers;
    OrkaRoles row;
    int number;
};

bool isBefore(const Keyed &a, const Keyed &b)
{
    for (size_t i = 0; i < a.texts.size(); ++i) {
        const int order = a.texts.at(i).compare(b.texts.at(i));
        if (order != 0)
            return order < 0;
    }
    return a.numbers < b.numbers;
}

/// What isn't known is 0, and comes last.
long long sortable(long long number)
{
    return number == 0 ? std::numeric_limits<long long>::max() : number;
}

long long lengthOf(const OrkaRoles &row)
{
    const OrkaList<OrkaResource> resources = row.mediaData().resources();
    return resources.isEmpty() ? 0 : resources.first().duration();
}

QStringList textsOf(SortKey key, const OrkaRoles &row)
{
    const OrkaMetaData data = row.mediaData().metaData();
    switch (key) {
    case SortKey::Title:
        return {row.title().toString()};
    case SortKey::Artist:
        return {data.artist(), data.album()};
    case SortKey::Album:
    case SortKey::Track:
        return {data.album()};
    default:
        return {};
    }
}

} // namespace

ArrangedRows::ArrangedRows(RowSource &source, RowRange range, SortKey key,
    const QSet<QString> &kinds, std::function<int(int)> trackOf)
    : m_source(source)
    , m_range(range)
    , m_number(key == SortKey::Given ? range.first : 0)
    , m_key(key)
    , m_kinds(kinds)
    , m_trackOf(std::move(trackOf))
{
}

bool ArrangedRows::readPage(Rows *page)
{
    if (!m_source.next(page))
        return false;
    const QVector<OrkaRoles> all = std::exchange(page->rows, {});
    page->numbers.clear();
    for (const OrkaRoles &row : all) {
        if (m_kinds.isEmpty() || m_kinds.contains(kindName(row.type()))) {
            page->rows.append(row);
            page->numbers.append(m_number);
        }
        ++m_number;
    }
    m_ofOtherKinds += all.size() - page->rows.size();
    return true;
}

bool ArrangedRows::next(Rows *page)
{
    if (m_key == SortKey::Given)
        return readPage(page);
    if (m_failure)
        std::rethrow_exception(std::exchange(m_failure, nullptr));
    if (m_isRead)
        return false;
    m_isRead = true;
    Rows part;
    *page = Rows();
    try {
        while (readPage(&part)) {
            page->rows += part.rows;
            page->numbers += part.numbers;
            page->rowsCount = part.rowsCount;
            page->rowsVersion = part.rowsVersion;
            page->roles = part.roles;
        }
    } catch (const Failure &) {
        if (page->rows.isEmpty())
            throw;
        m_failure = std::current_exception();
    }
    sort(page);
    if (!page->rows.isEmpty())
        m_ofOtherKinds = 0; // the range alone may leave none of them
    const int count = m_range.last - m_range.first + 1;
    page->rows = page->rows.mid(m_range.first, count);
    page->numbers = page->numbers.mid(m_range.first, count);
    return true;
}

void ArrangedRows::sort(Rows *rows) const
{
    // Without a language, bytes would be compared.
    const QLocale locale = QLocale::system();
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<Keyed> keyed;
    for (int i = 0; i < rows->rows.size(); ++i) {
        Keyed entry{{}, {}, rows->rows.at(i), rows->numbers.at(i)};
        for (const QString &text : textsOf(m_key, entry.row))
            entry.texts.push_back(collator.sortKey(text));
        if (m_key == SortKey::Date)
            entry.numbers.push_back(sortable(
                entry.row.mediaData().metaData().value(OrkaMetaData::Date()).toLongLong()));
        if (m_key == SortKey::Length)
            entry.numbers.push_back(sortable(lengthOf(entry.row)));
        if (m_key == SortKey::Track || m_key == SortKey::Album)
            entry.numbers.push_back(sortable(m_trackOf(entry.number)));
        keyed.push_back(entry);
    }
    std::stable_sort(keyed.begin(), keyed.end(), isBefore);
    for (int i = 0; i < rows->rows.size(); ++i) {
        rows->rows[i] = keyed.at(size_t(i)).row;
        rows->numbers[i] = keyed.at(size_t(i)).number;
    }
}
