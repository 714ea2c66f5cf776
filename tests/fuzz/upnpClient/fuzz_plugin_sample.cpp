#include "LonelyWorker.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

/// Stands under the worker's prefix in the root and says a number of rows to everybody.
class Rows : public CMWorker
{
public:
    Rows()
        : CMWorker({{CMWorker::Prefix_(), QStringLiteral("upnp")}}, QStringLiteral("rows"))
    {
        CMRoot()->mount(this);
    }

    void getRowsRequest(const CMGetRowsRequest &request) override
    {
        OrkaRowsRoles answer;
        answer.setRows({QVariantList{request.firstRow()}});
        answer.setRowsCount(count);
        request.reply().setValue(answer);
    }
    void getDataRequest(const CMGetDataRequest &) override {}
    void setDataRequest(const CMSetDataRequest &) override {}

    int count = 0;
};

} // namespace

/// Any sample value, any range and any count bring an answer of no more rows than were asked for.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const LonelyWorker lonely;
    static Rows rows;
    FuzzedDataProvider bytes(data, size);
    const int last = bytes.ConsumeIntegralInRange<int>(-2, 30);
    rows.count = bytes.ConsumeIntegral<int>();
    CMPath path(QStringLiteral("upnp"), QStringLiteral("/uuid:1/30"));
    path.addParam(
        QStringLiteral("sample"), QString::fromStdString(bytes.ConsumeRandomLengthString(64)));

    const CMReply<OrkaRowsRoles> reply;
    lonely.worker->getRowsRequest({path, 0, last, -1, {OrkaRoles::Title()}, reply});
    // Each sample takes a few turns of the event loop.
    for (int turns = 0; turns < 2000 && !reply.isFinished(); ++turns)
        QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    require(reply.isFinished() && reply.value().rows().size() <= qMax(1, last + 1));
    return 0;
}
