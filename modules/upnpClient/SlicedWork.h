#pragma once

#include <QObject>

#include <functional>

/// Work on a long reply or request, cut into turns of the event loop, so that nothing else waits
/// for it longer than a few milliseconds. Short work is done within `start()`. Deletes itself at
/// its end; destroyed earlier, with its parent, it just stops.
class SlicedWork : public QObject
{
public:
    /// Steps done in one turn, a property map each: about 2.5 ms.
    static constexpr int stepsPerTurn = 100;

    void start() { runSlice(); }

protected:
    explicit SlicedWork(QObject *parent)
        : QObject(parent)
    {
    }

    /// Does one piece; false when that was the last, after which nothing more is called.
    virtual bool step() = 0;

private:
    void runSlice();
};

/// Calls `body` with 0 to `count` - 1, then `done`, in slices. Ends with `parent`.
void loopInSlices(
    QObject *parent, int count, std::function<void(int)> body, std::function<void()> done);
