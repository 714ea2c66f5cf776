#include "SlicedWork.h"

void SlicedWork::runSlice()
{
    for (int done = 0; done < stepsPerTurn; ++done) {
        if (!step()) {
            deleteLater();
            return;
        }
    }
    QMetaObject::invokeMethod(
        this, [this] { runSlice(); }, Qt::QueuedConnection);
}
