#pragma once

#include "web/Soup.h"

#include <api/core/OrkaHash.h>

#include <QByteArray>
#include <QUrlQuery>

#include <functional>

class Exchange;
class CMError;
class Failure;
using ExchangePointer = std::shared_ptr<Exchange>;

/// One HTTP request until it is answered: now or later from the event loop, once. One that
/// everybody has let go of is answered with an error; one whose client has left stays silent.
class Exchange
{
public:
    enum Caching {
        /// Answers may change: clients ask again, with the ETag of what they have.
        Revalidate,
        /// The address names the contents.
        Keep,
        /// Not even an ETag.
        Never
    };

    /// One that isn't whole has its headers only. It may be refused, and else is forgotten.
    explicit Exchange(SoupServerMessage *message, bool isWhole = true);
    ~Exchange();
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    SoupServerMessage *message() const { return m_message.get(); }
    QByteArray method() const { return soup_server_message_get_method(m_message.get()); }
    /// The path as it travelled, percent escapes and all.
    QByteArray rawPath() const { return m_rawPath; }
    /// A parameter of the query, decoded; empty where there is none.
    QString parameter(const QString &name) const;
    QStringList parameters(const QString &name) const;
    QByteArray body() const;
    QByteArray header(const char *name) const;
    void setHeader(const char *name, const QByteArray &value);

    /// False where the client has left, or was answered.
    bool isOpen() const { return !m_isAnswered && !m_hasFinished; }
    /// The same, looking at the connection: while a request waits for its answer, nobody hears that
    /// its client leaves.
    bool isWanted() const;
    /// Told when the client has left or has all of the answer.
    void setFinished(std::function<void()> finished) { m_finished = std::move(finished); }

    /// Answers with a whole body, made smaller where the client can read that, or with 304 where it
    /// has it already.
    void answer(int status, const char *type, const QByteArray &body, Caching caching = Revalidate);
    /// A JSON document.
    void answer(const OrkaHash &document, int status = 200);
    /// {"error":{…}} with the HTTP status that fits.
    void refuse(const Failure &failure);
    void refuse(const CMError &error);
    void refuse(int status, const char *name, const QString &sentence);

    /// Begins an answer of unknown length, or of `length` bytes; its pieces follow by send().
    void begin(int status, const char *type, goffset length = -1);
    void send(const QByteArray &piece);
    /// The answer is whole.
    void end();
    /// Cuts the connection, so that the client knows that the answer is not whole.
    void cut();
    /// How many pieces the client has not taken yet.
    int unsent() const { return m_unsent; }
    /// Told each time that a piece was written.
    void setWritten(std::function<void()> written) { m_written = std::move(written); }

private:
    static void onFinished(SoupServerMessage *message, gpointer exchange);
    static void onWroteChunk(SoupServerMessage *message, gpointer exchange);
    void setCommonHeaders(const char *type);
    void resume();

    GRef<SoupServerMessage> m_message;
    QByteArray m_rawPath;
    QUrlQuery m_query;
    std::function<void()> m_finished;
    std::function<void()> m_written;
    int m_unsent = 0;
    const bool m_isWhole;
    bool m_isAnswered = false;
    bool m_hasFinished = false;
};
