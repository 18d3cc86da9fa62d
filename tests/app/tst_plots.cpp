// The plot items: decimation and buffers against naive references, and the real pixels of a
// window, under the software renderer (offscreen) and under OpenGL on an X server.
#include "app/ui/MinMaxDecimator.h"
#include "app/ui/PlotTypes.h"
#include "app/ui/ScrollClock.h"
#include "app/ui/SpectrumBuffer.h"
#include "app/ui/TraceBuffer.h"
#include "app/ui/TracePlot.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <random>

namespace {
// Every sample ever written (NaN where a gap was written); the buffer holds the tail of it.
struct Written
{
    std::vector<float> all;
    float held(const TraceBuffer& buffer, qint64 k) const
    {
        return k >= 0 && k >= buffer.written() - buffer.capacity() && k < buffer.written() ? all[size_t(k)] : NAN;
    }
};

bool lit(QRgb pixel)
{
    return qGray(pixel) > 64;
}

std::unique_ptr<QQuickItem> loadScene(QQmlEngine& engine, QQuickWindow& window, const QByteArray& qml)
{
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nimport OrvexPro.Plots 1.0\n" + qml, QUrl());
    std::unique_ptr<QQuickItem> item(qobject_cast<QQuickItem*>(component.create()));
    if (!item)
        qWarning() << component.errors();
    else
        item->setParentItem(window.contentItem());
    return item;
}

// Shows the scene on black and waits until every plot has drawn a picture.
bool showAndDraw(QQuickWindow& window, const QSize& size, const QList<QQuickItem*>& plots)
{
    window.setColor(Qt::black);
    window.resize(size);
    window.show();
    return QTest::qWaitForWindowExposed(&window) && QTest::qWaitFor([&] {
               return std::all_of(plots.begin(), plots.end(),
                                  [](QQuickItem* p) { return p && p->property("framesDrawn").toInt() > 0; });
           });
}

// An X server gives OpenGL, where the plots draw geometry; elsewhere the software renderer.
QSGRendererInterface::GraphicsApi expectedApi()
{
    return QGuiApplication::platformName() == QLatin1String("xcb") ? QSGRendererInterface::OpenGL
                                                                   : QSGRendererInterface::Software;
}

QImage grab(QQuickWindow& window)
{
    QImage image = window.grabWindow().convertToFormat(QImage::Format_RGB32);
    if (!qEnvironmentVariableIsEmpty("ORVEX_SAVE_GRABS"))
        image.save(qEnvironmentVariable("ORVEX_SAVE_GRABS") + QTest::currentDataTag() + QStringLiteral(".png"));
    return image;
}
}

class TestPlots : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        PlotTypes::registerAll();
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    }

    void decimator_data()
    {
        QTest::addColumn<int>("span");
        QTest::addColumn<int>("columns");
        QTest::addColumn<int>("written");
        QTest::addColumn<int>("capacity");
        QTest::addColumn<int>("endBack"); // picture ends this many samples before the newest
        QTest::addColumn<int>("nanFrom");
        QTest::addColumn<int>("nanCount");
        QTest::newRow("whole samples per column") << 4000 << 400 << 4000 << 5000 << 0 << 0 << 0;
        QTest::newRow("fractional column, wrapped ring") << 1000 << 333 << 2500 << 1500 << 0 << 0 << 0;
        QTest::newRow("fewer samples than columns") << 50 << 200 << 120 << 100 << 0 << 0 << 0;
        QTest::newRow("start of the record") << 1000 << 100 << 300 << 2000 << 0 << 0 << 0;
        QTest::newRow("NaN run across columns") << 1000 << 100 << 1500 << 1500 << 0 << 600 << 55;
        QTest::newRow("NaN inside one column") << 1000 << 100 << 1500 << 1500 << 0 << 702 << 2;
        QTest::newRow("NaN fills one column") << 1000 << 100 << 1500 << 1500 << 0 << 700 << 10;
        QTest::newRow("NaN ends one column") << 1000 << 100 << 1500 << 1500 << 0 << 705 << 5;
        QTest::newRow("NaN starts one column") << 1000 << 100 << 1500 << 1500 << 0 << 700 << 3;
        QTest::newRow("NaN between sparse samples") << 50 << 200 << 120 << 100 << 0 << 90 << 1;
        QTest::newRow("one column") << 500 << 1 << 700 << 600 << 0 << 0 << 0;
        QTest::newRow("frozen before the newest") << 1000 << 300 << 3000 << 2000 << 123 << 0 << 0;
    }

    void decimator()
    {
        QFETCH(int, span);
        QFETCH(int, columns);
        QFETCH(int, written);
        QFETCH(int, capacity);
        QFETCH(int, endBack);
        QFETCH(int, nanFrom);
        QFETCH(int, nanCount);
        std::mt19937 random(11);
        std::normal_distribution<float> noise(0, 50);
        Written data;
        for (int k = 0; k < written; ++k)
            data.all.push_back(k >= nanFrom && k < nanFrom + nanCount ? NAN : noise(random));
        data.all[size_t(written / 2)] = 1e4f; // a spike must survive
        TraceBuffer buffer;
        buffer.reset({ QStringLiteral("a") }, 1, capacity);
        for (int k = 0; k < written; k += 37)
            buffer.append({ QList<float>(data.all.begin() + k, data.all.begin() + std::min(k + 37, written)) });

        const qint64 end = written - endBack;
        MinMaxDecimator decimator;
        decimator.setLayout(columns, span);
        const qint64 first = decimator.firstSample(end);
        std::vector<float> samples(size_t(end - first));
        buffer.copy(0, first, int(samples.size()), samples.data());
        decimator.run(samples.data(), end);

        // Naive reference: each sample goes to column floor(k * columns / span), counted so
        // that the newest sample lands in the last column.
        const auto columnOf = [&](qint64 k) { return qint64(std::floor(double(k) * columns / span)); };
        const qint64 offset = columnOf(end - 1) - (columns - 1);
        std::vector<MinMaxDecimator::Column> expected(static_cast<size_t>(columns));
        bool seenValid = false, gap = false;
        for (qint64 k = end - span - span / columns - 2; k < end; ++k) {
            const qint64 c = columnOf(k) - offset;
            const float v = data.held(buffer, k);
            if (c < 0)
                continue;
            if (std::isnan(v)) {
                gap = true;
                continue;
            }
            MinMaxDecimator::Column& e = expected[size_t(c)];
            if (!e.valid)
                e = { v, v, v, v, true, seenValid && !gap };
            e = { std::min(e.minimum, v), std::max(e.maximum, v), e.first, v, true, e.joined };
            seenValid = true;
            gap = false;
        }
        for (int c = 0; c < columns; ++c) {
            const MinMaxDecimator::Column& got = decimator.column(c);
            const MinMaxDecimator::Column& want = expected[size_t(c)];
            QVERIFY2(got.valid == want.valid, qPrintable(QStringLiteral("column %1").arg(c)));
            if (want.valid) {
                QCOMPARE(got.minimum, want.minimum);
                QCOMPARE(got.maximum, want.maximum);
                QCOMPARE(got.first, want.first);
                QCOMPARE(got.last, want.last);
                QVERIFY2(got.joined == want.joined, qPrintable(QStringLiteral("column %1").arg(c)));
            }
        }
    }

    void ringCopy_data()
    {
        QTest::addColumn<int>("capacity");
        QTest::addColumn<int>("written");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("count");
        QTest::newRow("not yet full") << 100 << 60 << 10 << 40;
        QTest::newRow("straddles the ring end") << 100 << 250 << 160 << 80;
        QTest::newRow("older than held") << 100 << 250 << 100 << 100;
        QTest::newRow("beyond the newest") << 100 << 250 << 230 << 50;
        QTest::newRow("before sample 0") << 100 << 30 << -20 << 40;
        QTest::newRow("longer than the ring") << 100 << 333 << 200 << 200;
        QTest::newRow("one block larger than the ring") << 10 << 333 << 300 << 40;
    }

    // Two channels; every fifth block lacks the second row, which must come back as NaN.
    void ringCopy()
    {
        QFETCH(int, capacity);
        QFETCH(int, written);
        QFETCH(int, first);
        QFETCH(int, count);
        const int block = capacity == 10 ? written : 7;
        TraceBuffer buffer;
        buffer.reset({ QStringLiteral("a"), QStringLiteral("b") }, 10, capacity / 10.0);
        QCOMPARE(buffer.capacity(), capacity);
        Written a, b;
        for (int k = 0, n = 0; k < written; k += block, ++n) {
            QList<QList<float>> rows(n % 5 == 4 ? 1 : 2);
            for (int j = k; j < std::min(k + block, written); ++j) {
                for (int r = 0; r < rows.size(); ++r)
                    rows[r].append(r == 0 ? float(j) : -float(j));
                a.all.push_back(float(j));
                b.all.push_back(rows.size() > 1 ? -float(j) : NAN);
            }
            buffer.append(rows);
        }
        QCOMPARE(buffer.written(), qint64(written));
        for (const auto& [channel, reference] : { std::pair { 0, &a }, std::pair { 1, &b } }) {
            std::vector<float> got(size_t(count), 12345.f);
            const int copied = buffer.copy(channel, first, count, got.data());
            int held = 0;
            for (int i = 0; i < count; ++i) {
                const qint64 k = first + i;
                held += k >= 0 && k >= written - capacity && k < written;
                const float want = reference->held(buffer, k);
                QVERIFY2(std::isnan(want) ? std::isnan(got[size_t(i)]) : got[size_t(i)] == want,
                         qPrintable(QStringLiteral("channel %1 sample %2").arg(channel).arg(k)));
            }
            QCOMPARE(copied, held);
        }
    }

    void peakFrequency_data()
    {
        QTest::addColumn<QList<float>>("spectrum");
        QTest::addColumn<int>("channel");
        QTest::addColumn<double>("minHz");
        QTest::addColumn<double>("maxHz");
        QTest::addColumn<double>("expected");
        const QList<float> s { 9, 1, 5, 3, 8, 2, NAN, 7 }; // bins every 0.5 Hz
        QTest::newRow("whole spectrum") << s << 0 << 0.0 << 10.0 << 0.0;
        QTest::newRow("limits are inclusive") << s << 0 << 0.5 << 2.0 << 2.0;
        QTest::newRow("limit between bins") << s << 0 << 0.6 << 1.9 << 1.0;
        QTest::newRow("NaN bin skipped") << s << 0 << 3.0 << 3.5 << 3.5;
        QTest::newRow("no bin in range") << s << 0 << 1.1 << 1.4 << -1.0;
        QTest::newRow("range beyond the spectrum") << s << 0 << 5.0 << 9.0 << -1.0;
        QTest::newRow("bad channel") << s << 2 << 0.0 << 10.0 << -1.0;
    }

    void peakFrequency()
    {
        QFETCH(QList<float>, spectrum);
        QFETCH(int, channel);
        QFETCH(double, minHz);
        QFETCH(double, maxHz);
        QFETCH(double, expected);
        SpectrumBuffer spectra;
        spectra.setSpectrum({ spectrum, QList<float>(spectrum.size(), 0.f) }, 0.5);
        QCOMPARE(spectra.peakFrequency(channel, minHz, maxHz), expected);
    }

    // Blocks of 40 samples at 1000 Hz, every 40 ms with jitter: the shown end glides, never
    // goes back, never passes the data and stays within three blocks of it.
    void scrollClockGlides_data()
    {
        QTest::addColumn<int>("jitterMs");
        QTest::addColumn<int>("stallAtBlock"); // one late block, as when the machine is busy
        QTest::newRow("steady") << 0 << -1;
        QTest::newRow("jitter") << 15 << -1;
        QTest::newRow("stall") << 5 << 20;
    }

    void scrollClockGlides()
    {
        QFETCH(int, jitterMs);
        QFETCH(int, stallAtBlock);
        ScrollClock clock;
        std::mt19937 random(7);
        std::uniform_int_distribution<int> jitter(-jitterMs, jitterMs);
        qint64 written = 0, shown = 0, nextArrival = 0, distinct = 0;
        for (int ms = 0, block = 0; ms < 4000; ms += 5) {
            if (ms >= nextArrival) {
                written += 40;
                clock.arrived(written, ms);
                nextArrival = ms + 40 + jitter(random) + (block++ == stallAtBlock ? 500 : 0);
            }
            const qint64 end = clock.endAt(ms, 1000, written);
            QVERIFY(end >= shown && end <= written && end >= written - 120);
            distinct += end != shown;
            shown = end;
        }
        QVERIFY(distinct > 400); // moves nearly every 5 ms, not once per block (100 blocks)
        QCOMPARE(clock.endAt(10000, 1000, written), written); // stopped: every sample shown
    }

    void spectrogramRing()
    {
        SpectrumBuffer spectra;
        spectra.setSpectrogramRows(4);
        spectra.setSpectrogramChannel(1);
        QSignalSpy layouts(&spectra, &SpectrumBuffer::layoutChanged);
        const auto push = [&](float value, int bins) {
            spectra.setSpectrum({ QList<float>(bins, -1.f), QList<float>(bins, value) }, 0.25);
        };
        push(0, 8);
        const float* storage = spectra.last(1).constData();
        for (int i = 1; i < 6; ++i)
            push(float(i), 8);
        QCOMPARE(spectra.last(1).constData(), storage); // same shape: no new storage
        QCOMPARE(layouts.count(), 1);
        QCOMPARE(spectra.spectrogramFilled(), 4);
        for (int age = 0; age < 4; ++age)
            QCOMPARE(spectra.spectrogramRow(age)[7], float(5 - age));
        QVERIFY(!spectra.spectrogramRow(4));
        QCOMPARE(spectra.amplitudeAt(1, 0.6), 5.0);
        push(6, 9); // new shape: the ring restarts
        QCOMPARE(layouts.count(), 2);
        QCOMPARE(spectra.spectrogramFilled(), 1);
        spectra.setSpectrogramChannel(0);
        QCOMPARE(spectra.spectrogramFilled(), 0);
        QVERIFY(!spectra.spectrogramRow(0));
    }

    void tracePixels_data()
    {
        QTest::addColumn<QList<int>>("visible");
        QTest::addColumn<bool>("stacked");
        QTest::addColumn<bool>("autoScale");
        QTest::addColumn<QList<double>>("extents"); // trace height per lane, share of the lane
        // Channel c is a 2 Hz sine of 20 * (c + 1) uV amplitude, drawn at 200 uV per division.
        QTest::newRow("stacked") << QList<int>() << true << false << QList<double> { 0.2, 0.4, 0.6 };
        QTest::newRow("chosen lanes") << QList<int> { 2, 1 } << true << false << QList<double> { 0.6, 0.4 };
        QTest::newRow("auto scale") << QList<int>() << true << true << QList<double> { 0.9, 0.9, 0.9 };
        QTest::newRow("overlaid") << QList<int> { 2 } << false << false << QList<double> { 0.6 };
    }

    // The real pixels of each lane: a continuous trace spans the expected height about the
    // lane's centre, reaches across the width, and leaves the NaN gap of channel 1 empty.
    void tracePixels()
    {
        QFETCH(QList<int>, visible);
        QFETCH(bool, stacked);
        QFETCH(bool, autoScale);
        QFETCH(QList<double>, extents);
        constexpr int Width = 600, Height = 300, GapFrom = 270, GapTo = 330; // samples 700..800
        TraceBuffer buffer;
        buffer.reset({ "a", "b", "c" }, 250, 10);
        QList<QList<float>> rows(3);
        for (int k = 0; k < 1250; ++k) { // the last 1000 samples fill the 4 s on screen
            for (int c = 0; c < 3; ++c) {
                const bool gap = c == 1 && k >= 700 && k < 800;
                rows[c].append(gap ? NAN : float(20 * (c + 1) * std::sin(2 * M_PI * 2 * k / 250.0)));
            }
        }
        buffer.append(rows);
        QQmlEngine engine;
        QQuickWindow window;
        auto plot = loadScene(engine, window,
                              "TracePlot { width: 600; height: 300; timeBase: 4; microvoltsPerDivision: 200;"
                              " minimum: -100; maximum: 100; showGrid: false; lineColor: 'black';"
                              " colors: ['white', 'white', 'white'] }");
        QVERIFY(plot);
        plot->setProperty("buffer", QVariant::fromValue(&buffer));
        plot->setProperty("visibleChannels", QVariant::fromValue(visible));
        plot->setProperty("stacked", stacked);
        plot->setProperty("autoScale", autoScale);
        QVERIFY(showAndDraw(window, QSize(Width, Height), { plot.get() }));
        QCOMPARE(window.rendererInterface()->graphicsApi(), expectedApi());
        const QImage image = grab(window);
        QCOMPARE(image.size(), QSize(Width, Height));

        const QList<int> channels = visible.isEmpty() ? QList<int> { 0, 1, 2 } : visible;
        const int laneHeight = Height / int(extents.size());
        for (int lane = 0; lane < extents.size(); ++lane) {
            int top = Height, bottom = -1, covered = 0, inGap = 0, breaks = 0;
            for (int x = 0, lastTop = -1, lastBottom = -1; x < Width; ++x) {
                int columnTop = Height, columnBottom = -1;
                for (int y = lane * laneHeight; y < (lane + 1) * laneHeight; ++y) {
                    if (lit(image.pixel(x, y))) {
                        columnTop = std::min(columnTop, y);
                        columnBottom = y;
                    }
                }
                const bool any = columnBottom >= 0;
                covered += any;
                inGap += any && x > GapFrom + 2 && x < GapTo - 2;
                // A continuous line: each column touches the one before it.
                breaks += any && lastBottom >= 0 && (columnTop > lastBottom + 1 || columnBottom < lastTop - 1);
                top = std::min(top, columnTop);
                bottom = std::max(bottom, columnBottom);
                lastTop = columnTop;
                lastBottom = columnBottom;
            }
            const QString where = QStringLiteral("lane %1: rows %2..%3").arg(lane).arg(top).arg(bottom);
            QVERIFY2(std::abs((bottom - top + 1) - extents[lane] * laneHeight) <= 3, qPrintable(where));
            QVERIFY2(std::abs((top + bottom) / 2.0 - (lane + 0.5) * laneHeight) <= 3, qPrintable(where));
            const bool gapped = channels[lane] == 1;
            QVERIFY2(covered >= Width - 2 - (gapped ? GapTo - GapFrom + 2 : 0), qPrintable(where));
            QVERIFY2(!gapped || inGap == 0, qPrintable(where));
            QVERIFY2(breaks == 0, qPrintable(where));
            double peakToPeak = 0;
            QMetaObject::invokeMethod(plot.get(), "shownPeakToPeak", Q_RETURN_ARG(double, peakToPeak),
                                      Q_ARG(int, channels[lane]));
            QCOMPARE_LE(std::abs(peakToPeak - 40.0 * (channels[lane] + 1)), 0.5);
        }
    }

    // The spectrum's highest point sits at the 10 Hz peak; the spectrogram shows the newest
    // spectra on the right, the peak bright at 10 Hz, and nothing where no spectrum is held yet.
    void spectrumPixels()
    {
        SpectrumBuffer spectra;
        spectra.setSpectrogramRows(20);
        QList<float> alpha, beta;
        for (int k = 0; k <= 80; ++k) { // 0 .. 40 Hz in 0.5 Hz bins
            alpha.append(float(1 + 20 * std::exp(-std::pow(k * 0.5 - 10, 2))));
            beta.append(float(1 + 20 * std::exp(-std::pow(k * 0.5 - 30, 2))));
        }
        for (int i = 0; i < 10; ++i)
            spectra.setSpectrum({ alpha, beta }, 0.5);
        QQmlEngine engine;
        QQuickWindow window;
        auto scene = loadScene(engine, window,
                               "Item { width: 400; height: 200\n"
                               " SpectrumPlot { objectName: 'spectrum'; width: 200; height: 200; channels: [0];"
                               "  showGrid: false; lineColor: 'white' }\n"
                               " SpectrogramPlot { objectName: 'spectrogram'; x: 200; width: 200; height: 200 } }");
        QVERIFY(scene);
        auto* spectrum = scene->findChild<QQuickItem*>("spectrum");
        auto* spectrogram = scene->findChild<QQuickItem*>("spectrogram");
        spectrum->setProperty("buffer", QVariant::fromValue(&spectra));
        spectrogram->setProperty("buffer", QVariant::fromValue(&spectra));
        QVERIFY(showAndDraw(window, QSize(400, 200), { spectrum, spectrogram }));
        QCOMPARE(window.rendererInterface()->graphicsApi(), expectedApi());
        const QImage image = grab(window);
        int peakX = -1;
        for (int y = 0; y < 200 && peakX < 0; ++y) {
            for (int x = 0; x < 200 && peakX < 0; ++x)
                peakX = lit(image.pixel(x, y)) ? x : -1;
        }
        QCOMPARE_LE(std::abs(peakX - 50), 3); // 10 Hz of 40 Hz across 200 pixels
        QVERIFY(lit(image.pixel(390, 150)));     // newest spectrum, 10 Hz
        QVERIFY(!lit(image.pixel(390, 50)));     // 30 Hz: weak in channel 0
        QCOMPARE(image.pixel(250, 150), qRgb(0, 0, 0)); // older than any spectrum held
    }
};

QTEST_MAIN(TestPlots)
#include "tst_plots.moc"
