#include "devices/EDFVirtualDevice.h"
#include "formats/EDFWriter.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <memory>

using Block = QList<QList<float>>;

namespace {

constexpr int kRate = 250;
constexpr int kLength = 1000; // 4 s at 250 Hz
constexpr double kRange0 = 2000;
constexpr double kRange1 = 200;

// Channel 0 holds the sample index, so every block tells where playback stands.
float written(int ch, int i)
{
    return ch == 0 ? float(i) : float(150.0 * std::sin(2 * M_PI * 7.0 * i / kRate));
}

} // namespace

// Ticks are driven by hand with a fake clock. The playback position is shared by every
// player in the process, so each case first brings it back to 0 through the device itself.
class TestEdfVirtualDevice : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    qint64 m_now = 1000000;

    QString writeFile(const QString& name)
    {
        const QString path = m_dir.filePath(name);
        EDFWriter writer(path, QList<QString>{" Fp1 ", "O2"}, kRate, {}, QList<double>{kRange0, kRange1});
        if (!writer.open())
            return QString();
        Block data(2);
        for (int ch = 0; ch < 2; ++ch)
            for (int i = 0; i < kLength; ++i)
                data[ch].append(written(ch, i));
        writer.writeData(data);
        writer.close();
        return path;
    }

    std::unique_ptr<EDFVirtualDevice> device(const QString& path)
    {
        auto dev = std::make_unique<EDFVirtualDevice>();
        dev->setTimeSource([this] { return m_now; });
        if (!path.isEmpty())
            dev->setPath(path);
        return dev;
    }

    // One tick after `ms`; empty when nothing was emitted.
    Block tick(EDFVirtualDevice& dev, qint64 ms)
    {
        m_now += ms;
        QSignalSpy spy(&dev, &AbstractDevice::dataReady);
        QMetaObject::invokeMethod(&dev, "onDataTimer");
        return spy.isEmpty() ? Block() : spy.first().first().value<Block>();
    }

    // Stamps the clock, reads one sample to learn the position, then plays to the end.
    void rewind(EDFVirtualDevice& dev)
    {
        tick(dev, 0);
        const Block one = tick(dev, 4);
        QCOMPARE(one.value(0).size(), 1);
        const int next = int(std::lround(one[0][0])) + 1;
        if (next < kLength)
            tick(dev, qint64(kLength - next) * 4);
    }

    // One digital step: the recorder uses the 16-bit span for BDF as well.
    static float tolerance(double range) { return float(2 * range / 65535.0); }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void loadsFile()
    {
        auto dev = device(writeFile("load.edf"));
        QCOMPARE(dev->channelCount(), 2);
        QCOMPARE(dev->channelNames(), (QList<QString>{"Fp1", "O2"}));
        QCOMPARE(dev->samplingRate(), float(kRate));
        QCOMPARE(dev->deviceType(), QString("EDFVirtualDevice"));
        QCOMPARE(dev->name(), QString("EDFVirtualDevice"));
        QCOMPARE(dev->connectionState(), AbstractDevice::CONNECTED);
    }

    void playsWholeFileAndLoops_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("edf") << "play.edf";
        QTest::newRow("bdf") << "play.bdf";
    }

    // Irregular ticks totalling 4 s give exactly the file once, in order, with the written
    // values; the block after the one ending at 999 starts again at 0.
    void playsWholeFileAndLoops()
    {
        QFETCH(QString, name);
        auto dev = device(writeFile(name));
        QCOMPARE(dev->channelCount(), 2);
        rewind(*dev);

        const qint64 jitter[] = {37, 43, 41, 39, 40, 33, 47};
        Block all(2);
        qint64 elapsed = 0;
        int ticks = 0;
        while (elapsed < 4000) {
            const qint64 ms = qMin(jitter[ticks % 7], 4000 - elapsed);
            elapsed += ms;
            ++ticks;
            const Block block = tick(*dev, ms);
            QCOMPARE(block.size(), 2);
            QCOMPARE(block[0].size(), block[1].size());
            all[0] += block[0];
            all[1] += block[1];
        }
        QCOMPARE(all[0].size(), kLength); // 10 samples per 40 ms on average
        for (int i = 0; i < kLength; ++i) {
            QVERIFY2(std::fabs(all[0][i] - written(0, i)) <= tolerance(kRange0), qPrintable(QString::number(i)));
            QVERIFY2(std::fabs(all[1][i] - written(1, i)) <= tolerance(kRange1), qPrintable(QString::number(i)));
        }

        const Block next = tick(*dev, 40);
        QCOMPARE(next[0].size(), 10);
        QCOMPARE(std::lround(next[0][0]), 0L);
        QCOMPARE(std::lround(next[0][9]), 9L);
    }

    // Blocks of 7 with 3 samples left: the block holds 3, nothing from the start is borrowed.
    void shortLastBlock()
    {
        auto dev = device(writeFile("short.edf"));
        rewind(*dev);
        tick(*dev, 997 * 4);
        const Block last = tick(*dev, 28);
        QCOMPARE(last[0].size(), 3);
        QCOMPARE(last[1].size(), 3);
        QCOMPARE(std::lround(last[0][0]), 997L);
        QCOMPARE(std::lround(last[0][2]), 999L);
        const Block first = tick(*dev, 28);
        QCOMPARE(first[0].size(), 7);
        QCOMPARE(std::lround(first[0][0]), 0L);
    }

    void timerFollowsLifecycle()
    {
        auto dev = device(QString());
        auto* timer = dev->findChild<QTimer*>();
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 40);
        QVERIFY(!dev->open()); // nothing loaded yet
        QVERIFY(!timer->isActive());

        dev->setPath(writeFile("life.edf"));
        QVERIFY(dev->open());
        QVERIFY(timer->isActive());
        dev->stop();
        QVERIFY(!timer->isActive());
        QVERIFY(dev->start(kRate));
        QVERIFY(timer->isActive());
        dev->close();
        QVERIFY(!timer->isActive());
        QVERIFY(!dev->open());
        QVERIFY(!timer->isActive());
    }

    void unreadableFileLeavesNoData_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing") << QByteArray();
        QTest::newRow("garbage") << QByteArray("0       not a recording at all");
    }

    void unreadableFileLeavesNoData()
    {
        QFETCH(QByteArray, content);
        const QString path = m_dir.filePath(QString("bad_%1.edf").arg(QTest::currentDataTag()));
        if (!content.isEmpty()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        auto dev = device(writeFile("before_bad.edf"));
        dev->setPath(path); // replaces a good file
        QCOMPARE(dev->channelCount(), 0);
        QVERIFY(dev->channelNames().isEmpty());
        QVERIFY(!dev->open());
        QVERIFY(!dev->findChild<QTimer*>()->isActive());
        QVERIFY(tick(*dev, 0).isEmpty());
        QVERIFY(tick(*dev, 40).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestEdfVirtualDevice)
#include "tst_edfvirtualdevice.moc"
