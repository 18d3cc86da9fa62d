// The review of a long record: writes a record (default 24 h, 21 channels, 250 Hz, a note every
// ten minutes) with the recorder, then times what a person waits for in the review view:
// opening the file, and each scroll step (reading the window) per window length, with the
// plot's min/max decimation of the window into 1600 pixel columns.
//   bench_review [hours] [channels] [rate] [file]   (the file is kept when it is given)
#include "app/ui/RecordReviewController.h"
#include "app/ui/TraceGeometry.h"
#include "formats/EDFWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <cmath>
#include <cstdio>
#include <vector>

namespace {
constexpr int Columns = 1600;
constexpr int Steps = 40;

void writeRecord(const QString& path, double hours, int channels, int rate)
{
    QList<QString> labels;
    for (int c = 0; c < channels; ++c)
        labels.append(QStringLiteral("Ch%1").arg(c + 1));
    EDFWriter writer(path, labels, rate, { { QStringLiteral("HP"), 0.5f } }, QList<double>(channels, 500.0));
    writer.takeStartTime(0);
    const int block = rate / 25;
    const qint64 blocks = qint64(hours * 3600 * rate / block);
    QList<QList<float>> data(channels, QList<float>(block));
    for (qint64 b = 0; b < blocks; ++b) {
        for (int c = 0; c < channels; ++c) {
            for (int k = 0; k < block; ++k)
                data[c][k] = float(40.0 * std::sin(0.25 * double(b * block + k) + c));
        }
        writer.writeData(data);
        const qint64 second = b * block / rate;
        if ((b * block) % rate == 0 && second % 600 == 0)
            writer.addAnnotation(QStringLiteral("note %1").arg(second / 600), int(second * 1000), 0);
    }
    writer.clearShift();
    writer.close();
}

// Milliseconds per step of `windows` window lengths through the file, window read and decimated.
double stepMs(RecordReviewController& review, double windows)
{
    TraceGeometry geometry;
    std::vector<QSGGeometry::Point2D> vertices;
    TraceBuffer& traces = *review.traces();
    geometry.setLayout(Columns, traces.capacity());
    vertices.resize(size_t(geometry.capacity()));
    review.setWindowStart(review.durationSeconds() / 3);
    QElapsedTimer timer;
    timer.start();
    for (int s = 0; s < Steps; ++s) {
        review.scroll(windows);
        for (int c = 0; c < traces.channelCount(); ++c)
            geometry.fill(traces, c, traces.written(), vertices.data());
    }
    return timer.nsecsElapsed() / 1e6 / Steps;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const double hours = argc > 1 ? std::atof(argv[1]) : 24.0;
    const int channels = argc > 2 ? std::atoi(argv[2]) : 21;
    const int rate = argc > 3 ? std::atoi(argv[3]) : 250;
    const bool keep = argc > 4;
    const QString path = keep ? QString::fromLocal8Bit(argv[4]) : QDir::temp().filePath(QStringLiteral("bench_review.edf"));

    QElapsedTimer timer;
    if (!keep || !QFileInfo::exists(path)) {
        timer.start();
        writeRecord(path, hours, channels, rate);
        std::printf("wrote %s: %.1f h, %d channels, %d Hz, %.0f MB in %.1f s\n", qPrintable(path), hours, channels,
                    rate, QFileInfo(path).size() / 1e6, timer.elapsed() / 1000.0);
    }
    RecordReviewController review;
    timer.start();
    if (!review.openFile(path)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(path));
        return 1;
    }
    std::printf("open (header, %d annotations, first 10 s window): %.0f ms\n", review.annotations()->rowCount(),
                timer.nsecsElapsed() / 1e6);
    for (double length : { 10.0, 60.0, 600.0 }) {
        review.setWindowLength(length);
        std::printf("window %4.0f s: scroll step of a tenth %.1f ms, of a whole window %.1f ms\n", length,
                    stepMs(review, 0.1), stepMs(review, 1.0));
    }
    if (!keep)
        QFile::remove(path);
    return 0;
}
