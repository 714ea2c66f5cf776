#pragma once

#include "Text.h"

#include <QHash>
#include <QStringList>
#include <QVector>

#include <optional>

/// One object of a scripted server, just as its DIDL-Lite is to say it. A null text leaves the
/// attribute or the element out; `xml` goes into the element as it is, `$BASE` in it is the address
/// the request came to, `http://host:port`.
struct MediaObject
{
    QString id;
    QString parent;
    QString title;
    QString upnpClass;
    QString xml;
    bool container = false;
    /// A container's tracks that are made while they are asked for: "Track 00001", ids
    /// `<container>$0` and on.
    int generated = 0;
};

/// The objects of one scripted server below its root container "0".
class MediaTree
{
public:
    MediaTree();

    void add(const MediaObject &object);
    /// Shorthands: a folder; a music track with a res of `seconds` and any more elements.
    void addFolder(
        const QString &id, const QString &parent, const QString &title, int generated = 0);
    void addTrack(const QString &id, const QString &parent, const QString &title,
        const QString &moreXml = QString(), int seconds = 60);

    std::optional<MediaObject> object(const QString &id) const;
    int childCount(const QString &id) const;
    /// The child in a row from 0 to `childCount() - 1`.
    MediaObject child(const QString &id, int row) const;
    /// Objects below a container that fit ContentDirectory criteria of one relation (`=`,
    /// `contains`, `derivedfrom`); "*" and "" fit all.
    QVector<MediaObject> matches(const QString &container, const QString &criteria) const;

private:
    QHash<QString, MediaObject> m_objects;
    QHash<QString, QVector<MediaObject>> m_children;
};

/// The object's DIDL-Lite element for a request that came to `base`.
QString didlElement(const MediaObject &object, int childCount, const QString &base);
