#include "ServerScript.h"

#include <QJsonArray>

#include <functional>

namespace {

QStringList texts(const QJsonValue &value)
{
    QStringList list;
    for (const QJsonValue &one : value.toArray())
        list.append(one.toString());
    return list;
}

/// Absent: the fallback; null: a null text.
QString text(const QJsonObject &object, const char *key, const QString &fallback)
{
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isUndefined() ? fallback : value.toString();
}

bool setEmptyResult(ServerBehaviour &behaviour, const QString &name)
{
    const QStringList names{
        QStringLiteral("didl"), QStringLiteral("nothing"), QStringLiteral("wrapped")};
    behaviour.emptyResult = ServerBehaviour::EmptyResult(qMax(0, names.indexOf(name)));
    return names.contains(name);
}

using Setter = std::function<bool(ServerBehaviour &, const QJsonValue &)>;

template<typename Member, typename Read>
Setter setter(Member ServerBehaviour::*member, Read read)
{
    return [member, read](ServerBehaviour &behaviour, const QJsonValue &value) {
        behaviour.*member = read(value);
        return true;
    };
}

QMap<QString, Setter> setters()
{
    const auto number = [](const QJsonValue &value) {
        return quint32(value.toDouble());
    };
    const auto flag = [](const QJsonValue &value) {
        return value.toBool();
    };
    const auto string = [](const QJsonValue &value) {
        return value.toString();
    };
    const auto codes = [](const QJsonValue &value) {
        QMap<QString, int> map;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it)
            map.insert(it.key(), it.value().toInt());
        return map;
    };
    using B = ServerBehaviour;
    return {{QStringLiteral("pageCap"), setter(&B::pageCap, number)},
        {QStringLiteral("refuseCountFrom"), setter(&B::refuseCountFrom, number)},
        {QStringLiteral("delay"), setter(&B::delay, [](const QJsonValue &v) { return v.toInt(); })},
        {QStringLiteral("delayPerRow"),
            setter(&B::delayPerRow, [](const QJsonValue &v) { return v.toInt(); })},
        {QStringLiteral("totalIsZero"), setter(&B::totalIsZero, flag)},
        {QStringLiteral("xmlDeclaration"), setter(&B::xmlDeclaration, flag)},
        {QStringLiteral("cutResult"), setter(&B::cutResult, flag)},
        {QStringLiteral("dropKept"), setter(&B::dropKept, flag)},
        {QStringLiteral("bareAmpersands"), setter(&B::bareAmpersands, flag)},
        {QStringLiteral("hang"), setter(&B::hang, texts)},
        {QStringLiteral("drop"), setter(&B::drop, texts)},
        {QStringLiteral("fail"), setter(&B::fail, codes)},
        {QStringLiteral("searchCaps"), setter(&B::searchCaps, string)},
        {QStringLiteral("sortCaps"), setter(&B::sortCaps, string)},
        {QStringLiteral("emptyResult"), [](B &behaviour, const QJsonValue &value) {
             return setEmptyResult(behaviour, value.toString());
         }}};
}

} // namespace

QString applyBehaviour(ServerBehaviour &behaviour, const QJsonObject &script)
{
    static const QMap<QString, Setter> known = setters();
    for (auto it = script.begin(); it != script.end(); ++it) {
        if (!known.contains(it.key()) || !known.value(it.key())(behaviour, it.value()))
            return QStringLiteral(
                "The behaviour \"%1\" isn't known or has a wrong value. Known: %2.")
                .arg(it.key(), known.keys().join(QStringLiteral(", ")));
    }
    return {};
}

void addObjects(MediaTree &tree, const QJsonArray &objects)
{
    for (const QJsonValue &value : objects) {
        const QJsonObject from = value.toObject();
        MediaObject object;
        object.generated = from.value(QStringLiteral("generated")).toInt();
        object.container = from.value(QStringLiteral("container")).toBool(object.generated > 0);
        object.id = text(from, "id", {});
        object.parent = text(from, "parent", QStringLiteral("0"));
        object.title = text(from, "title", object.id);
        object.upnpClass = text(from, "class",
            object.container ? QStringLiteral("object.container.storageFolder")
                             : QStringLiteral("object.item.audioItem.musicTrack"));
        object.xml = text(from, "xml", QStringLiteral(""));
        tree.add(object);
    }
}
