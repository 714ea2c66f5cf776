#include "tree/TrackNumbers.h"

#include "Failure.h"
#include "Text.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"

namespace {

constexpr uint page = 500;

} // namespace

QHash<int, int> trackNumbers(Session &session, const CMPath &folder, RowRange range)
{
    const ServiceCalls service(session.options().timeout);
    const QString object =
        service.objectOf(folder.base(), session.mediaService().servers().paths());
    QHash<int, int> numbers;
    if (object.isEmpty())
        return numbers; // the list of servers
    for (int first = range.first; first <= range.last;) {
        const uint count = uint(std::min<long long>(page, 1LL + range.last - first));
        const ServiceAnswer answer =
            service.children(object, uint(first), count, {QStringLiteral("TrackNumber")});
        if (!listsObjects(answer)) {
            throw Failure(answer.came ? AnsweredWithError : NoAnswer, QStringLiteral("noTracks"),
                Text::tr("%1 doesn't tell the numbers of its tracks, so they can't be sorted "
                         "by them. Try --sort title.")
                    .arg(session.serverNameOf(folder)));
        }
        const QList<QVariantMap> children = childrenOf(answer);
        for (const QVariantMap &child : children)
            numbers.insert(first++, child.value(QStringLiteral("TrackNumber")).toInt());
        if (children.isEmpty() || uint(children.size()) < count)
            break;
    }
    return numbers;
}
