// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/OrkaHash.h>

/// What the player queues. An empty item is no item.
class ORKA_API_EXPORT OrkaPlayListItem : public OrkaHash
{
    ORKA_RECORD(OrkaPlayListItem)

    static const QString &ServiceId();
    /// The node's `OrkaRoles` as JSON text.
    static const QString &OrkaRoles_();
    static const QString &Artist();
    static const QString &Album();
    static const QString &ArtworkUrl();
    static const QString &DurationSeconds();
    static const QString &Genre();
    static const QString &Url();
    static const QString &Title();

    void setServiceId(const QString &id) { setValue(ServiceId(), id); }
    void setOrkaRoles(const QString &json) { setValue(OrkaRoles_(), json); }
    void setArtist(const QString &artist) { setValue(Artist(), artist); }
    void setAlbum(const QString &album) { setValue(Album(), album); }
    void setArtworkUrl(const QString &url) { setValue(ArtworkUrl(), url); }
    void setDurationSeconds(int seconds) { setValue(DurationSeconds(), seconds); }
    void setGenre(const QString &genre) { setValue(Genre(), genre); }
    void setUrl(const QString &url) { setValue(Url(), url); }
    void setTitle(const QString &title) { setValue(Title(), title); }

    QString serviceId() const { return value(ServiceId()).toString(); }
    QString orkaRoles() const { return value(OrkaRoles_()).toString(); }
    QString artist() const { return value(Artist()).toString(); }
    QString album() const { return value(Album()).toString(); }
    QString artworkUrl() const { return value(ArtworkUrl()).toString(); }
    int durationSeconds() const { return value(DurationSeconds()).toInt(); }
    QString genre() const { return value(Genre()).toString(); }
    QString url() const { return value(Url()).toString(); }
    QString title() const { return value(Title()).toString(); }
};
