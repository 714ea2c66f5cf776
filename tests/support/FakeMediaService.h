#pragma once

#include "FakeTree.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVector>

#include <functional>
#include <optional>

class PrivateBus;

/// One method call as the service received it.
struct FakeCall
{
    QDBusMessage message;

    QString path() const { return message.path(); }
    QString member() const { return message.member(); }
    QVariantList arguments() const { return message.arguments(); }
    /// "ListChildren /…/server/1/3634 (0, 10, [17], )": lists by their length.
    QString text() const;
};

/// Which calls a rule is about; what is left empty matches everything.
struct FakeMatch
{
    QString member = {};
    QString path = {};
    /// One of the call's text arguments: a property's name, an interface, a query.
    QString argument = {};
    /// How many calls the rule takes before it is used up, -1 for all.
    int times = -1;

    bool matches(const FakeCall &call) const;
};

/// The media service in the test's own process: the answers of a `FakeTree` on the bus, and any
/// fault a test asks for. It answers from the test's event loop and nowhere else, so a program that
/// waits for it never gets its answer.
class FakeMediaService : public QDBusVirtualObject
{
    Q_OBJECT

public:
    using Answer = std::function<FakeReply(const FakeCall &)>;

    explicit FakeMediaService(const PrivateBus &bus);
    ~FakeMediaService() override;

    FakeTree tree;

    /// Rules are tried from the newest to the oldest; a call that none takes is the tree's.
    void hold(const FakeMatch &match) { m_rules.append({match, Answer()}); }
    void fail(const FakeMatch &match, const QString &message = "it failed",
        const QString &name = "com.intel.dleyna.OperationFailed")
    {
        answer(match, FakeReply::error(name, message));
    }
    void answer(const FakeMatch &match, const Answer &with) { m_rules.append({match, with}); }
    void answer(const FakeMatch &match, const FakeReply &reply)
    {
        answer(match, [reply](const FakeCall &) { return reply; });
    }
    /// With these values, of whatever signature.
    void answer(const FakeMatch &match, const QVariantList &values)
    {
        answer(match, FakeReply{values});
    }
    void forgetRules() { m_rules.clear(); }

    /// Answers the held calls that match, in the order in which they came; returns how many.
    int release(const FakeMatch &match = {});
    /// Answers one held call, counted from 0 in the order in which they came.
    void releaseAt(int index);
    int held() const { return m_held.size(); }
    /// What the tree answers to this call.
    FakeReply treeAnswer(const FakeCall &call) const;

    const QVector<FakeCall> &calls() const { return m_calls; }
    QVector<FakeCall> calls(const FakeMatch &match) const;
    int count(const FakeMatch &match) const { return calls(match).size(); }
    void forgetCalls() { m_calls.clear(); }
    /// The calls one a line, for people.
    QString callsText() const;
    /// Returns when the program and the service have told each other everything, see
    /// `PrivateBus::settle()`.
    void settle() const;

    void announceFound(const QString &server) { announce("FoundServer", server); }
    void announceLost(const QString &server) { announce("LostServer", server); }
    /// Takes the server from the tree and says so.
    void lose(const QString &server);

    /// Like a killed service: its connection goes, held calls end with an error from the bus.
    void vanish();
    /// Back under its name, with the same tree; announces nothing.
    void comeBack();

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    QString introspect(const QString &) const override { return QString(); }

private:
    struct Rule
    {
        FakeMatch match;
        Answer answer; // none holds the call
    };

    void announce(const QString &signal, const QString &server);
    std::optional<Rule> ruleFor(const FakeCall &call, bool releasing);
    void reply(const FakeCall &call, const FakeReply &reply);

    const PrivateBus &m_bus;
    QString m_connectionName;
    QDBusConnection m_connection;
    QVector<Rule> m_rules;
    QVector<FakeCall> m_calls;
    QVector<FakeCall> m_held;
    /// Messages that have come and gone.
    int m_activity = 0;
};
