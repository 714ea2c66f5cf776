#pragma once

#include <QObject>

#include <functional>

/// Work on a long reply or request, cut into turns of the event loop, so that nothing else waits
/// for it longer than a few milliseconds. Short work is done within `start()`. Destroyed with its
/// parent in the middle of it, it just stops.
class SlicedWork : public QObject
{
public:
    /// Steps done in one turn, a property map each: about 2.5 ms.
    static constexpr int stepsPerTurn = 100;

    void start() { runSlice(); }

protected:
    enum class Next {
        Step, ///< there is more to do
        Rest, ///< nothing now; `start()` goes on
        End ///< all is done: the work deletes itself
    };

    explicit SlicedWork(QObject *parent)
        : QObject(parent)
    {
    }

    /// Does one piece.
    virtual Next step() = 0;

private:
    void runSlice();
};

/// Calls `body` with 0 to `count` - 1, then `done`, in slices. Ends with `parent`.
void loopInSlices(
    QObject *parent, int count, std::function<void(int)> body, std::function<void()> done);
