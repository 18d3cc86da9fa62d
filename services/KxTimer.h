#pragma once

#include <QTimer>

// The application's timer: precise, because device pacing derives block sizes from it.
class KxTimer : public QTimer
{
    Q_OBJECT
public:
    explicit KxTimer(int intervalMs = 0, QObject* parent = nullptr);
};
