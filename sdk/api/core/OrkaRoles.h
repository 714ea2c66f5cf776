// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMPath.h>
#include <api/core/OrkaHash.h>
#include <api/core/OrkaMediaData.h>
#include <api/core/TrString.h>

/// What a node is: a container, a search entry, or an item of the kind that its MIME type names.
struct OrkaRolesType
{
    enum Enum {
        Unknown = 0,
        Container = 1,
        Audio = 2,
        Video = 3,
        Image = 4,
        OtherItem = 5,
        Search = 100
    };
};

/// Containers that a client shows in a way of their own.
struct OrkaRolesContainerType
{
    enum Enum { None = 0, SearchMenu = 101 };
};

/// One node of the content tree as clients see it: a value for each role that the node has.
class ORKA_API_EXPORT OrkaRoles : public OrkaHash
{
    ORKA_RECORD(OrkaRoles)

    static const QString &Path();
    static const QString &Title();
    static const QString &Type();
    static const QString &ContainerType();
    static const QString &ContainerPlayable();
    static const QString &MediaData();
    /// URL of a picture.
    static const QString &Icon();
    /// Roles of the node's search menu.
    static const QString &Search();
    static const QString &Permission();
    /// Every role, in the order above.
    static QStringList all();

    void setPath(const CMPath &path) { setValue(Path(), QVariant::fromValue(path)); }
    void setTitle(const TrString &title) { setValue(Title(), QVariant::fromValue(title)); }
    void setType(OrkaRolesType::Enum type) { setValue(Type(), int(type)); }
    void setContainerType(OrkaRolesContainerType::Enum type)
    {
        setValue(ContainerType(), int(type));
    }
    void setContainerPlayable(bool playable) { setValue(ContainerPlayable(), playable); }
    void setMediaData(const OrkaMediaData &data) { setValue(MediaData(), data.toVariant()); }
    void setIcon(const QString &url) { setValue(Icon(), url); }
    void setSearch(const OrkaRoles &menu) { setValue(Search(), menu.toVariant()); }

    CMPath path() const { return value(Path()).value<CMPath>(); }
    TrString title() const { return value(Title()).value<TrString>(); }
    OrkaRolesType::Enum type() const { return OrkaRolesType::Enum(value(Type()).toInt()); }
    OrkaRolesContainerType::Enum containerType() const
    {
        return OrkaRolesContainerType::Enum(value(ContainerType()).toInt());
    }
    bool containerPlayable() const { return value(ContainerPlayable()).toBool(); }
    OrkaMediaData mediaData() const { return fromVariant(value(MediaData())); }
    QString icon() const { return value(Icon()).toString(); }
    OrkaRoles search() const { return fromVariant(value(Search())); }
};

/// The answer to a rows request.
class ORKA_API_EXPORT OrkaRowsRoles : public OrkaHash
{
    ORKA_RECORD(OrkaRowsRoles)

    static const QString &Rows();
    static const QString &RowsCount();
    static const QString &RowsVersion();
    static const QString &Roles();

    /// A list with one entry a row; a row is a list with one value per requested role, in the
    /// request's order, invalid where the node lacks the role.
    void setRows(const QVariant &rows) { setValue(Rows(), rows); }
    /// All children of the node, not those of this answer.
    void setRowsCount(int count) { setValue(RowsCount(), count); }
    void setRowsVersion(int version) { setValue(RowsVersion(), version); }
    /// The listed node itself.
    void setRoles(const OrkaRoles &roles) { setValue(Roles(), roles.toVariant()); }

    QVariantList rows() const { return value(Rows()).toList(); }
    int rowsCount() const { return value(RowsCount()).toInt(); }
    int rowsVersion() const { return value(RowsVersion()).toInt(); }
    OrkaRoles roles() const { return fromVariant(value(Roles())); }
};

Q_DECLARE_METATYPE(OrkaRowsRoles)
