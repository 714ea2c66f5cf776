// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/OrkaHash.h>

/// What is known about a work, whatever files hold it.
class ORKA_API_EXPORT OrkaMetaData : public OrkaHash
{
    ORKA_RECORD(OrkaMetaData)

    static const QString &Artist();
    static const QString &Composer();
    static const QString &Album();
    static const QString &Genre();
    /// Milliseconds since 1970-01-01T00:00:00 UTC.
    static const QString &Date();
    static const QString &ServiceID();

    void setArtist(const QString &artist) { setValue(Artist(), artist); }
    void setComposer(const QString &composer) { setValue(Composer(), composer); }
    void setAlbum(const QString &album) { setValue(Album(), album); }
    void setGenre(const QString &genre) { setValue(Genre(), genre); }
    void setDate(long long milliseconds) { setValue(Date(), milliseconds); }
    void setServiceID(const QString &id) { setValue(ServiceID(), id); }

    QString artist() const { return value(Artist()).toString(); }
    QString album() const { return value(Album()).toString(); }
};

/// One file or stream that plays a work.
class ORKA_API_EXPORT OrkaResource : public OrkaHash
{
    ORKA_RECORD(OrkaResource)

    static const QString &MimeType();
    static const QString &Uri();
    /// Milliseconds.
    static const QString &Duration();
    /// Bits per second.
    static const QString &BitRate();
    /// Hertz.
    static const QString &SampleFrequency();
    static const QString &BitsPerSample();

    void setMimeType(const QString &type) { setValue(MimeType(), type); }
    void setUri(const QString &uri) { setValue(Uri(), uri); }
    void setDuration(long long milliseconds) { setValue(Duration(), milliseconds); }
    void setBitRate(int bitsPerSecond) { setValue(BitRate(), bitsPerSecond); }
    void setSampleFrequency(int hertz) { setValue(SampleFrequency(), hertz); }
    void setBitsPerSample(int bits) { setValue(BitsPerSample(), bits); }

    QString uri() const { return value(Uri()).toString(); }
    long long duration() const { return value(Duration()).toLongLong(); }
};

/// Metadata and the resources that go with it.
class ORKA_API_EXPORT OrkaMediaData : public OrkaHash
{
    ORKA_RECORD(OrkaMediaData)

    static const QString &MetaData();
    static const QString &Resources();

    void setMetaData(const OrkaMetaData &metaData) { setValue(MetaData(), metaData.toVariant()); }
    void setResources(const OrkaList<OrkaResource> &resources)
    {
        setValue(Resources(), QVariantList(resources));
    }

    OrkaMetaData metaData() const { return fromVariant(value(MetaData())); }
    OrkaList<OrkaResource> resources() const
    {
        return OrkaList<OrkaResource>(value(Resources()).toList());
    }
};
