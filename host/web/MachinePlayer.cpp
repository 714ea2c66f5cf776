#include "web/MachinePlayer.h"

#include "Failure.h"
#include "output/JsonOutput.h"
#include "output/Playlist.h"
#include "tree/PlayableRow.h"
#include "web/QueueApi.h"

#include <cmath>

namespace {

constexpr int mostFailures = 3;
constexpr int mostItems = 50'000;
constexpr std::chrono::seconds longestQuestion(5);

QVariant field(const QVariant &item, const char *name)
{
    return OrkaHash::fromVariant(item).value(QLatin1String(name));
}

double number(const OrkaHash &command, const char *name, double least, double most)
{
    bool isNumber = false;
    const double value = command.value(QLatin1String(name)).toDouble(&isNumber);
    if (!isNumber || !(value >= least && value <= most)) {
        throw wrongUsage(QStringLiteral("\"%1\" is a number from %2 to %3.")
                             .arg(QLatin1String(name))
                             .arg(least)
                             .arg(most));
    }
    return value;
}

int positionOf(const OrkaHash &command, const QVariantList &items)
{
    if (items.isEmpty())
        throw wrongUsage(QStringLiteral("\"items\" is empty. Name a track to play."));
    return int(number(command, "position", 0, items.size() - 1));
}

} // namespace

MachinePlayer::MachinePlayer(
    LiveChain &chain, CarriedAddresses &carried, EventStreams &events, HttpServer &server)
    : m_chain(chain)
    , m_carried(carried)
    , m_events(events)
{
    server.route(
        "POST", "/api/player", [this](const ExchangePointer &exchange) { command(exchange); });
    publish();
}

void MachinePlayer::command(const ExchangePointer &exchange)
{
    const OrkaHash command =
        OrkaHash::fromVariant(valueFromJson(QString::fromUtf8(exchange->body())));
    const QString name = command.value(QStringLiteral("command")).toString();
    if (name == QLatin1String("play")) {
        const QVariantList items = itemsOf(command);
        play(items, positionOf(command, items));
    } else if (m_position < 0 || !m_mpv) {
        throw missing(QStringLiteral("notPlaying"),
            QStringLiteral("Nothing plays on this machine. Play something first."));
    } else if (name == QLatin1String("queue")) {
        const QVariantList items = itemsOf(command);
        requeue(items, positionOf(command, items));
    } else if (name == QLatin1String("append")) {
        append(itemsOf(command));
    } else if (name == QLatin1String("pause") || name == QLatin1String("resume")) {
        m_mpv->send({"set_property", "pause", name == QLatin1String("pause")});
    } else if (name == QLatin1String("seek")) {
        m_mpv->send({"seek", number(command, "seconds", 0, 1e6), "absolute"});
    } else if (name == QLatin1String("volume")) {
        m_mpv->send({"set_property", "volume", number(command, "percent", 0, 100)});
    } else if (name == QLatin1String("next")) {
        load(m_position + 1);
    } else if (name == QLatin1String("previous")) {
        load(m_time > 3 ? m_position : std::max(0, m_position - 1));
    } else if (name == QLatin1String("stop")) {
        stop();
    } else {
        throw wrongUsage(QStringLiteral(
            "\"command\" is play, queue, append, pause, resume, seek, next, previous, "
            "volume or stop."));
    }
    exchange->answer(valueDocument(true));
}

void MachinePlayer::play(const QVariantList &items, int position)
{
    if (!Mpv::isInstalled()) {
        throw missing(QStringLiteral("noPlayer"),
            QStringLiteral("This machine has no mpv, which plays here. Install it."));
    }
    check(items);
    m_items = items;
    m_failures = 0;
    m_message.clear();
    if (!m_mpv) {
        m_mpv = std::make_unique<Mpv>();
        connect(m_mpv.get(), &Mpv::said, this, &MachinePlayer::hear);
        // Later, since it is let go of.
        connect(
            m_mpv.get(), &Mpv::ended, this,
            [this] { lose(QStringLiteral("mpv has ended. Play again.")); }, Qt::QueuedConnection);
        connect(
            m_mpv.get(), &Mpv::silent, this,
            [this] { lose(QStringLiteral("mpv did not answer and was ended. Play again.")); },
            Qt::QueuedConnection);
        int id = 0;
        for (const char *property : {"time-pos", "duration", "pause", "volume"})
            m_mpv->send({"observe_property", ++id, property});
    }
    m_mpv->send({"set_property", "pause", false});
    m_isPaused = false; // which mpv tells only where it changes something
    load(position);
}

void MachinePlayer::requeue(const QVariantList &items, int position)
{
    const QVariant &named = items.at(position);
    const QVariant &playing = m_items.at(m_position);
    if (field(named, "url") != field(playing, "url")
        && field(named, "path") != field(playing, "path"))
        throw wrongUsage(QStringLiteral("The item at \"position\" is not the one that plays."));
    check(items);
    m_items = items;
    m_position = position;
    publish();
}

void MachinePlayer::append(const QVariantList &items)
{
    check(items);
    if (m_items.size() + items.size() > mostItems) {
        throw wrongUsage(
            QStringLiteral("This machine takes %1 tracks at most. The others are left out.")
                .arg(mostItems));
    }
    m_items += items;
    publish();
}

bool MachinePlayer::isCarried(const QVariant &item) const
{
    const QString url = field(item, "url").toString();
    return isPlayableUrl(url) && m_carried.hasMedia(url.toUtf8());
}

void MachinePlayer::check(const QVariantList &items) const
{
    for (const QVariant &item : items) {
        const CMPath path = CMPath::fromEncoded(field(item, "path").toString());
        if (path.isEmpty() && !isCarried(item)) {
            throw wrongUsage(QStringLiteral("No row has named the track \"%1\" since the program "
                                            "was started. Queue it anew.")
                                 .arg(field(item, "title").toString()));
        }
    }
}

void MachinePlayer::load(int position)
{
    m_time = 0;
    m_duration = 0;
    if (position >= m_items.size()) {
        stop();
        return;
    }
    m_position = position;
    publish();
    const int question = ++m_questions;
    m_isAsking = true;
    m_mpv->send({"stop"}); // else the track before might end meanwhile, as if it were this one
    const auto answer = [this, question](const QString &url) {
        if (question == m_questions)
            loadFile(url);
    };
    const QVariant item = m_items.at(position);
    const QString known = isCarried(item) ? field(item, "url").toString() : QString();
    const CMPath path = CMPath::fromEncoded(field(item, "path").toString());
    if (path.isEmpty()) {
        answer(known);
        return;
    }
    const QStringList roles = OrkaRoles::all();
    m_chain.data(path, roles, [=](const CMError &, const QVariantList &values) {
        const OrkaRoles row = recordOf(roles, values);
        m_carried.note(row);
        const QString url = itemOfRow(row).url();
        answer(isPlayableUrl(url) ? url : known);
    });
    QTimer::singleShot(longestQuestion, this, [=] { answer(known); });
}

/// An empty address is that of a track that nobody can play.
void MachinePlayer::loadFile(const QString &url)
{
    ++m_questions; // has been answered
    m_isAsking = false;
    if (url.isEmpty())
        fileEnded(QStringLiteral("error"));
    else if (m_mpv)
        m_mpv->send({"loadfile", url});
}

void MachinePlayer::stop()
{
    m_mpv->send({"stop"});
    ++m_questions;
    m_isAsking = false;
    m_items.clear();
    m_position = -1;
    m_isPaused = true;
    m_time = 0;
    publish();
}

void MachinePlayer::lose(const QString &sentence)
{
    if (!m_mpv)
        return;
    if (m_position >= 0)
        m_message = sentence;
    stop();
    m_mpv.reset();
}

void MachinePlayer::hear(const QJsonObject &event)
{
    const QString kind = event.value(QStringLiteral("event")).toString();
    if (kind == QLatin1String("end-file")) {
        if (m_isAsking)
            return; // that of the track before
        fileEnded(event.value(QStringLiteral("reason")).toString());
        return;
    }
    if (kind != QLatin1String("property-change"))
        return;
    const QString name = event.value(QStringLiteral("name")).toString();
    const QJsonValue data = event.value(QStringLiteral("data"));
    if (name == QLatin1String("time-pos")) {
        m_time = std::floor(data.toDouble()); // told once a second
        if (m_time > 0)
            m_failures = 0;
    } else if (name == QLatin1String("duration")) {
        m_duration = data.toDouble();
    } else if (name == QLatin1String("volume")) {
        m_volume = data.toDouble();
    } else if (name == QLatin1String("pause")) {
        m_isPaused = data.toBool();
    }
    publish();
}

void MachinePlayer::fileEnded(const QString &reason)
{
    if (reason != QLatin1String("eof") && reason != QLatin1String("error"))
        return; // another was loaded in its place
    m_message.clear();
    if (reason == QLatin1String("error")) {
        m_message = QStringLiteral("“%1” can’t be played on this machine.")
                        .arg(field(m_items.value(m_position), "title").toString());
        if (++m_failures >= mostFailures) {
            m_message = QStringLiteral("Several tracks in a row can’t be played on this machine.");
            stop();
            return;
        }
    }
    load(m_position + 1);
}

void MachinePlayer::publish()
{
    const QVariant item = m_items.value(m_position);
    OrkaHash state;
    state.setValue(QStringLiteral("available"), Mpv::isInstalled());
    state.setValue(QStringLiteral("active"), m_position >= 0);
    state.setValue(QStringLiteral("position"), m_position);
    state.setValue(QStringLiteral("count"), m_items.size());
    for (const char *name : {"title", "artist", "icon", "path"})
        state.setValue(QLatin1String(name), field(item, name).toString());
    state.setValue(QStringLiteral("time"), m_time);
    state.setValue(QStringLiteral("duration"), m_duration);
    state.setValue(QStringLiteral("paused"), m_isPaused);
    state.setValue(QStringLiteral("volume"), m_volume);
    state.setValue(QStringLiteral("message"), m_message);
    m_events.publish("player", state);
}
