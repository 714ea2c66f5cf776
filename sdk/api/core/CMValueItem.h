// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMPath.h>
#include <api/core/OrkaValue.h>

#include <QObject>

/// Watches one path of the value store. Signals come from the event loop of the item's thread, one
/// for each change, in order; a value that is there when the item is made is announced too, as a
/// change from the empty value.
class ORKA_API_EXPORT CMValueItem : public QObject
{
    Q_OBJECT

public:
    CMValueItem(QObject *parent, const CMPath &path);
    ~CMValueItem() override;

    const CMPath &path() const { return m_path; }

signals:
    void changed(const OrkaValue &newValue, const OrkaValue &oldValue);

protected:
    bool event(QEvent *event) override;

private:
    CMPath m_path;
};

/// The values that the host publishes, by path. Any thread.
class ORKA_API_EXPORT CMValueStore
{
public:
    /// The empty value where nothing was published.
    static OrkaValue value(const CMPath &path);
    /// Tells every item that watches `path`, unless the value is the one that is there.
    static void setValue(const CMPath &path, const OrkaValue &value);
};
