// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/CMError.h>
#include <api/core/OrkaRoles.h>

#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>
#include <type_traits>

class CMReplyState;

/// The answer to a request, shared by everybody who holds a handle to it. Safe to answer, read and
/// watch from any thread.
///
/// The first answer, a value or an error, finishes the reply and is announced once to every
/// watcher. A value set after an error is kept beside it and changes nothing for those already
/// told. An answer of a kind that the reply already has is dropped with a WARN line. A
/// default-made handle belongs to no request; answering it is a programming error and asserts.
class ORKA_API_EXPORT CMVoidReply
{
public:
    CMVoidReply() = default;

    bool isValid() const { return bool(m_state); }
    bool isFinished() const;
    /// Empty (its name too) while there is none.
    CMError error() const;
    void setError(const CMError &error);

    /// How many handles share this reply: tells whether somebody still means to answer.
    long handles() const { return m_state.use_count(); }

    friend bool operator==(const CMVoidReply &a, const CMVoidReply &b)
    {
        return a.m_state == b.m_state;
    }

#ifdef ORKA_FOREIGN_SDK
    void setVariant(const QVariant &value);

protected:
#else
protected:
    void setVariant(const QVariant &value);
#endif
    explicit CMVoidReply(std::shared_ptr<CMReplyState> state);
    static std::shared_ptr<CMReplyState> newState();
    QVariant variant() const;

    std::shared_ptr<CMReplyState> m_state;

private:
    friend class CMReplyWatcherObject;
    friend class CMAbstractWorker;
    /// Every value is shown to `check` before it is taken; what it returns, unless it is no error,
    /// answers in the value's place. Set before the reply is handed to anybody.
    void setCheck(std::function<CMError(const QVariant &)> check);
};

/// A reply whose value is a T: a record, a variant list, or any variant.
template<typename T>
class CMReplyData : public CMVoidReply
{
public:
    CMReplyData() = default;
    /// The same reply, seen with its value.
    explicit CMReplyData(const CMVoidReply &reply)
        : CMVoidReply(reply)
    {
    }

    /// A T made from nothing while there is no value.
    T value() const
    {
        if constexpr (std::is_base_of_v<OrkaHash, T>) {
            return T(OrkaHash::fromVariant(variant()));
        } else if constexpr (std::is_same_v<T, QVariant>) {
            return variant();
        } else {
            return variant().template value<T>();
        }
    }
    void setValue(const T &value)
    {
        if constexpr (std::is_base_of_v<OrkaHash, T>) {
            setVariant(value.toVariant());
        } else {
            setVariant(value);
        }
    }

protected:
    explicit CMReplyData(std::shared_ptr<CMReplyState> state)
        : CMVoidReply(std::move(state))
    {
    }
};

/// A fresh reply, to be given to a request.
template<typename T>
class CMReply : public CMReplyData<T>
{
public:
    CMReply()
        : CMReplyData<T>(CMVoidReply::newState())
    {
    }
};

/// Tells an object when a reply is finished. The signal comes from the event loop of the watcher's
/// thread, never from inside the call that answers, and comes also when the reply was finished
/// before it was watched. A watcher destroyed first hears nothing.
class ORKA_API_EXPORT CMReplyWatcherObject : public QObject
{
    Q_OBJECT

public:
    explicit CMReplyWatcherObject(const CMVoidReply &reply, QObject *parent = nullptr);
    ~CMReplyWatcherObject() override;

    const CMVoidReply &reply() const { return m_reply; }

signals:
    void finishedSignal(const CMVoidReply &reply);

protected:
    bool event(QEvent *event) override;

private:
    CMVoidReply m_reply;
};

#ifndef ORKA_FOREIGN_SDK
Q_DECLARE_METATYPE(CMVoidReply)
#endif
