#include "RowsAnswer.h"

#include <utility>

RowsAnswer::RowsAnswer(QObject *worker, const ObjectMapping &mapping,
    const CMGetRowsRequest &request, const QDBusMessage &reply, int count)
    : SlicedWork(worker)
    , m_mapping(mapping)
    , m_request(request)
    , m_count(count)
{
    m_mapping.setRoles(sdk::rolesOf(request));
    m_reader.open(reply, m_mapping.wanted());
}

SlicedWork::Next RowsAnswer::step()
{
    ObjectProperties properties;
    if (m_reader.next(&properties)) {
        m_rows.append(QVariant(m_mapping.row(properties)));
        return Next::Step;
    }
    auto answer = sdk::empty<OrkaRowsRoles>();
    answer.setRowsVersion(0);
    // The answer holds them from here on.
    answer.setRows(std::exchange(m_rows, {}));
    answer.setRowsCount(m_count);
    sdk::answer(m_request, answer);
    return Next::End;
}
