#pragma once

#include <QDBusPendingCallWatcher>
#include <QStringList>

#include <chrono>
#include <memory>
#include <vector>

/// Whether media servers that are listed are still there: each is asked something small, all at
/// once and beside everything else. The media service learns of it, too, and lists a server no
/// longer that is gone.
class SignsOfLife
{
public:
    /// Asks these, by their object paths.
    explicit SignsOfLife(const QStringList &servers);

    /// Waits in the event loop for those that haven't answered, two seconds since they were asked
    /// at most. Returns a sentence for each that can't be reached.
    QStringList problems();

private:
    struct Question
    {
        QString server;
        std::unique_ptr<QDBusPendingCallWatcher> call;
    };

    std::vector<Question> m_questions;
    std::chrono::steady_clock::time_point m_asked = std::chrono::steady_clock::now();
};
