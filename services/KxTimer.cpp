#include "services/KxTimer.h"

KxTimer::KxTimer(int intervalMs, QObject* parent)
    : QTimer(parent)
{
    setTimerType(Qt::PreciseTimer);
    setInterval(intervalMs);
}
