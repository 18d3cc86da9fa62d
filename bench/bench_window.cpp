// The whole window on the generator for a while: samples the engine received against what the
// generator's rate promises, frames per second, process CPU, and the time to the first frame.
// Run under a display (xvfb-run): bench_window [seconds] [channels] [rate]
#include "app/CommandLineOptions.h"
#include "app/DesktopStartup.h"
#include "app/OrvexModel.h"
#include "app/ui/UiModel.h"
#include "core/CortexCore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <sys/resource.h>

namespace {
double cpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}
}

int main(int argc, char* argv[])
{
    const double seconds = argc > 1 ? std::atof(argv[1]) : 60;
    const int channels = argc > 2 ? std::atoi(argv[2]) : 8;
    const int rate = argc > 3 ? std::atoi(argv[3]) : 1000;
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    qputenv("TMPDIR", home.path().toLocal8Bit());

    QStringList names;
    for (int i = 0; i < channels; ++i)
        names.append(QStringLiteral("C%1").arg(i + 1));
    CommandLineOptions options;
    options.device = QStringLiteral("generator");
    options.deviceGiven = true;
    options.noApi = true;
    options.settings = { { QStringLiteral("GeneratorSamplingRate"), QString::number(rate) },
                         { QStringLiteral("GeneratorChannelNames"), names.join(QLatin1Char(',')) } };
    int fakeArgc = 1;
    DesktopStartup startup(fakeArgc, argv, options);
    int code = 0;
    if (!startup.start(code))
        return code ? code : 1;
    startup.ui()->setCurrentScreen(1); // the live traces: the heaviest screen

    qint64 samples = 0;
    qint64 frames = 0;
    QElapsedTimer streaming;
    double cpuAtStart = 0;
    CortexCore* engine = startup.model()->engine();
    QObject::connect(engine, &CortexCore::newDataByChannel, [&](const QList<QList<float>>& block) {
        if (!streaming.isValid()) {
            streaming.start();
            cpuAtStart = cpuSeconds();
        }
        if (!block.isEmpty())
            samples += block.first().size();
    });
    QObject::connect(startup.window(), &QQuickWindow::frameSwapped, [&] { frames += streaming.isValid(); });
    QTimer::singleShot(int(seconds * 1000) + 3000, qApp, &QCoreApplication::quit);
    startup.exec();

    const double elapsed = streaming.elapsed() / 1000.0;
    const qint64 expected = qint64(elapsed * rate);
    std::printf("window: %d channels x %d Hz for %.1f s\n", channels, rate, elapsed);
    std::printf("  samples per channel: %lld received, %lld by the rate (difference %lld, one block is %d)\n",
                static_cast<long long>(samples), static_cast<long long>(expected),
                static_cast<long long>(expected - samples), rate / 25);
    std::printf("  frames: %.1f per second\n", frames / elapsed);
    std::printf("  process CPU: %.1f %% of one core\n", 100.0 * (cpuSeconds() - cpuAtStart) / elapsed);
    std::printf("  first frame: %lld ms after start\n", static_cast<long long>(startup.firstFrameMs()));
    return 0;
}
