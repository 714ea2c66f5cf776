// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMRequest.h>

#include <QHash>
#include <QObject>

#include <memory>

class CMWorkerGate;

/// Something that answers requests about a part of the content tree. Lives on the thread that made
/// it; everything here is called on that thread unless it says otherwise.
class ORKA_API_EXPORT CMAbstractWorker : public QObject
{
    Q_OBJECT

public:
    explicit CMAbstractWorker(QObject *parent = nullptr);
    ~CMAbstractWorker() override;

    /// The first part of the paths that are this worker's.
    virtual QString prefix() const = 0;

    /// Each answers the request's reply once, now or later from the event loop.
    virtual void getRowsRequest(const CMGetRowsRequest &request) = 0;
    virtual void getDataRequest(const CMGetDataRequest &request) = 0;
    virtual void setDataRequest(const CMSetDataRequest &request) = 0;

    /// The same with the parts of a request. A request for one row (`first` == `last`) that brings
    /// no row is answered with an error, so a value always holds the row. `rowsVersion` is the
    /// version of the rows that the caller has, -1 for none.
    void getRows(const CMPath &path, int first, int last, int rowsVersion, const QStringList &roles,
        const CMReply<OrkaRowsRoles> &reply);
    void getData(const CMPath &path, const QStringList &roles, const CMReply<QVariantList> &reply);
    void setData(const CMPath &path, const QVariant &value, const CMReply<QVariant> &reply);

    /// Where other threads put requests for this worker; outlives it.
    virtual std::shared_ptr<CMWorkerGate> gate() const { return m_gate; }

signals:
    /// The rows of the node at `path` are no longer those of an earlier version.
    void rowsChanged(const CMPath &path, int rowsVersion);

protected:
    bool event(QEvent *event) override;

private:
    std::shared_ptr<CMWorkerGate> m_gate;
};

/// A worker with a name and a prefix of its own.
class ORKA_API_EXPORT CMWorker : public CMAbstractWorker
{
    Q_OBJECT

public:
    /// Takes the prefix from the configuration (`Prefix_()`), else `name` is the prefix.
    CMWorker(
        const QHash<QString, QVariant> &config, const QString &name, QObject *parent = nullptr);

    /// Key of the prefix in a worker's configuration hash.
    static const QString &Prefix_();

    const QString &name() const { return m_name; }
    QString prefix() const override { return m_prefix; }
    /// The path of this worker's node whose base is `base`, taken literally: nothing in it is
    /// decoded or read as a parameter.
    CMPath addPrefix(const QString &base) const { return CMPath(m_prefix, base); }

private:
    QString m_name;
    QString m_prefix;
};
