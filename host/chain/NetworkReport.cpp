#include "chain/NetworkReport.h"

#include "KnownSentences.h"
#include "Text.h"
#include "chain/NetworkPublisher.h"
#include "chain/ServiceCalls.h"
#include "output/SafeText.h"

#include <algorithm>

namespace {

QStringList sentencesOf(const QVariantMap &bridge, const QString &property)
{
    QStringList sentences = bridge.value(property).toStringList();
    for (QString &sentence : sentences)
        sentence = translatedSentence(sentence);
    return sentences;
}

/// "10.0.0.2 on eth0", as the bridge says.
QString placeText(const QString &place)
{
    const QStringList parts = place.split(QStringLiteral(" on "));
    return parts.size() == 2 ? Text::tr("%1 on %2", "an interface").arg(parts[0], parts[1]) : place;
}

} // namespace

NetworkReport NetworkReport::read()
{
    const ServiceCalls calls(std::chrono::seconds(5));
    const QVariantMap bridge = propertiesOf(calls.everything(ServiceCalls::managerPath()));
    NetworkReport report;
    report.isTold = bridge.contains(QStringLiteral("Listening"));
    for (const QString &place : bridge.value(QStringLiteral("Listening")).toStringList()) {
        if (!place.endsWith(QLatin1String(" on lo")))
            report.listening.append(placeText(place));
    }
    report.absent = sentencesOf(bridge, QStringLiteral("AwaitedServers"))
        + sentencesOf(bridge, QStringLiteral("AbsentServers"));
    for (const QString &trouble : sentencesOf(bridge, QStringLiteral("Troubles"))) {
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
    const bool isOne = !which.isEmpty();
    const QString reason = report.isCutOff()
        ? (isOne ? Text::tr(
               "This machine has no network address, so no media server can be reached, and "
               "there is no %1.")
                 : Text::tr(
                     "This machine has no network address, so no media server can be reached."))
        : (isOne ? Text::tr("No media server has shown up, and there is no %1.")
                 : Text::tr("No media server has shown up."));
    const QString advice = report.isCutOff()
        ? Text::tr("Connect it to the network; \"orka doctor\" checks every part.")
        : Text::tr("Start one on this network, name its address with --server, or give it "
                   "more time with --wait; \"orka doctor\" checks every part.");
    return (isOne ? reason.arg(quoted(which)) : reason) + QLatin1Char(' ') + advice;
}
