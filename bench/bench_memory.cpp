// Peak memory of a full hour of kept history: 21 channels at 250 Hz, storage 3600 s. Prints
// the payload of the kept histories (device, montage and filtered channels), the peak
// resident size and their ratio.
#include "core/CortexCore.h"

#include <QCoreApplication>

#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {
long peakResidentKiB()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const bool grab = argc > 1 && std::strcmp(argv[1], "--grab") == 0;
    constexpr int Channels = 21;
    constexpr float Rate = 250.0f;
    constexpr int Seconds = 3600;

    CortexCore engine;
    engine.setStorageTimeSeconds(Seconds);
    engine.createDevice(Channels, Rate);
    engine.enableDataGrabMode(grab);
    const long baselineKiB = peakResidentKiB();

    QList<QList<float>> block(Channels, QList<float>(25));
    const int blocks = int(Seconds * Rate / 25) + 400; // a little more than the hour: cropping runs too
    for (int b = 0; b < blocks; ++b) {
        for (int c = 0; c < Channels; ++c) {
            for (int k = 0; k < 25; ++k)
                block[c][k] = float(20.0 * std::sin(0.1 * (b * 25 + k) + c));
        }
        engine.addDataChannelWise(block);
    }

    const double shapes = grab ? 6.0 : 3.0; // histories (+ grab buffers when grabbing)
    const double payloadMiB = shapes * Channels * Seconds * Rate * sizeof(float) / 1048576.0;
    const double peakMiB = peakResidentKiB() / 1024.0;
    const double baselineMiB = baselineKiB / 1024.0;
    std::printf("kept history payload: %.1f MiB (%s)\n", payloadMiB, grab ? "grab mode on" : "grab mode off");
    std::printf("peak RSS: %.1f MiB (process before streaming: %.1f MiB)\n", peakMiB, baselineMiB);
    std::printf("peak RSS / payload: %.2f\n", peakMiB / payloadMiB);
    return 0;
}
