// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMPath.h>
#include <api/core/CMReply.h>

#include <QSharedDataPointer>
#include <QStringList>

/// What all requests have: the node they are about and the reply they want. Requests are
/// implicitly shared values that never change; any thread.
class ORKA_API_EXPORT CMRequest
{
public:
    /// False for a default-made request, which has no reply.
    bool isValid() const { return reply().isValid(); }
    const CMPath &path() const { return m_path; }
    const CMVoidReply &reply() const { return m_reply; }
    void setError(const CMError &error) const { CMVoidReply(m_reply).setError(error); }

protected:
    CMRequest() = default;
    CMRequest(const CMPath &path, const CMVoidReply &reply)
        : m_path(path)
        , m_reply(reply)
    {
    }
    ~CMRequest() = default;
    CMRequest(const CMRequest &) = default;
    CMRequest &operator=(const CMRequest &) = default;

private:
    CMPath m_path;
    CMVoidReply m_reply;
};

/// Asks for children of a node.
class ORKA_API_EXPORT CMGetRowsRequest : public CMRequest
{
public:
    using Reply = CMReplyData<OrkaRowsRoles>;

    CMGetRowsRequest() = default;
    /// Rows from `first` to `last`, inclusive, counted from 0; `rowsVersion` is the version of the
    /// rows that the caller has, -1 for none.
    CMGetRowsRequest(const CMPath &path, int first, int last, int rowsVersion,
        const QStringList &roles, const Reply &reply)
        : CMRequest(path, reply)
        , m_first(first)
        , m_last(last)
        , m_rowsVersion(rowsVersion)
        , m_roles(roles)
    {
    }

    int firstRow() const { return m_first; }
    int lastRow() const { return m_last; }
    int rowsVersion() const { return m_rowsVersion; }
    const QStringList &roles() const { return m_roles; }
    Reply reply() const { return Reply(CMRequest::reply()); }

private:
    int m_first = 0;
    int m_last = -1;
    int m_rowsVersion = -1;
    QStringList m_roles;
};

/// Asks for roles of one node; the value is a list with one entry per role.
class ORKA_API_EXPORT CMGetDataRequest : public CMRequest
{
public:
    using Reply = CMReplyData<QVariantList>;

    CMGetDataRequest() = default;
    CMGetDataRequest(const CMPath &path, const QStringList &roles, const Reply &reply)
        : CMRequest(path, reply)
        , m_roles(roles)
    {
    }

    const QStringList &roles() const { return m_roles; }
#ifndef ORKA_FOREIGN_SDK
    Reply reply() const
    {
        return Reply(CMRequest::reply());
    }
#endif

private:
    QStringList m_roles;
};

/// Acts on a node; what the value means is the node's business.
class ORKA_API_EXPORT CMSetDataRequest : public CMRequest
{
public:
    using Reply = CMReplyData<QVariant>;

    CMSetDataRequest() = default;
    CMSetDataRequest(const CMPath &path, const QVariant &value, const Reply &reply)
        : CMRequest(path, reply)
        , m_value(value)
    {
    }

    const QVariant &value() const { return m_value; }
#ifndef ORKA_FOREIGN_SDK
    Reply reply() const
    {
        return Reply(CMRequest::reply());
    }
#endif

private:
    QVariant m_value;
};

Q_DECLARE_METATYPE(CMGetRowsRequest)
Q_DECLARE_METATYPE(CMGetDataRequest)
Q_DECLARE_METATYPE(CMSetDataRequest)
