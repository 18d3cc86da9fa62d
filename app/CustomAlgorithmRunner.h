#pragma once

#include <QObject>

class CortexCore;
class DataServerContext;
class OrvexSettings;

// Runs the user's custom algorithms, kept in the CustomAlgorithms setting, in one engine: at
// start and whenever the setting changes (from the window or from a client), with or without
// a window. Clients hear that the control values changed.
class CustomAlgorithmRunner : public QObject
{
    Q_OBJECT
public:
    CustomAlgorithmRunner(CortexCore* engine, OrvexSettings* settings, DataServerContext* clients);

private:
    void run();

    CortexCore* m_engine;
    OrvexSettings* m_settings;
    DataServerContext* m_clients;
};
