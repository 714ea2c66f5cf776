#include "chain/NetworkReport.h"

#include "chain/NetworkPublisher.h"
#include "chain/ServiceCalls.h"
#include "output/SafeText.h"

#include <algorithm>

NetworkReport NetworkReport::read()
{
    const ServiceCalls calls(std::chrono::seconds(5));
    const QVariantMap bridge = propertiesOf(calls.everything(ServiceCalls::managerPath()));
    NetworkReport report;
    report.isTold = bridge.contains(QStringLiteral("Listening"));
    for (const QString &place : bridge.value(QStringLiteral("Listening")).toStringList()) {
        if (!place.endsWith(QLatin1String(" on lo")))
            report.listening.append(place);
    }
    report.absent = bridge.value(QStringLiteral("AwaitedServers")).toStringList()
        + bridge.value(QStringLiteral("AbsentServers")).toStringList();
    for (const QString &trouble : bridge.value(QStringLiteral("Troubles")).toStringList()) {
        if (!report.absent.contains(trouble))
            report.troubles.append(trouble);
    }
    return report;
}

bool NetworkReport::isCutOff() const
{
    return listening.isEmpty() && NetworkPublisher::currentAddresses().isEmpty();
}

QString noServersSentence(const NetworkReport &report, const QString &which)
{
    const QString reason = report.isCutOff()
        ? QStringLiteral("This machine has no network address, so no media server can be reached")
        : QStringLiteral("No media server has shown up");
    const QString consequence =
        which.isEmpty() ? QString() : QStringLiteral(", and there is no %1").arg(quoted(which));
    const QString advice = report.isCutOff()
        ? QStringLiteral("Connect it to the network")
        : QStringLiteral("Start one on this network, name its address with --server, or give it "
                         "more time with --wait");
    return QStringLiteral("%1%2. %3; \"orka doctor\" checks every part.")
        .arg(reason, consequence, advice);
}
