#include "devices/OrvexDataGrabber.h"
#include "services/GlobalConsole.h"

#include <QtTest>

#include <cmath>

// Packets are built here by a small encoder of our own, from integer sample steps: 24-bit
// two's complement, most significant byte first, 0.0476837158203125 µV per step.
namespace {
constexpr double MicrovoltsPerStep = 0.0476837158203125;

QByteArray packet(int counter, const QList<int>& steps)
{
    QByteArray bytes(20, '\0');
    bytes[0] = char(counter & 0xff);
    for (int i = 0; i < 6 && i < steps.size(); ++i) {
        const quint32 v = quint32(steps[i]) & 0xffffff;
        bytes[2 + 3 * i] = char(v >> 16);
        bytes[3 + 3 * i] = char(v >> 8);
        bytes[4 + 3 * i] = char(v);
    }
    return bytes;
}

// Four packets carrying the 24 values `first`, `first`+1, ... of one default frame.
QList<QByteArray> frame(int firstCounter, int first)
{
    QList<QByteArray> packets;
    for (int p = 0; p < 4; ++p) {
        QList<int> steps;
        for (int i = 0; i < 6; ++i)
            steps.append(first + 6 * p + i);
        packets.append(packet(firstCounter + p, steps));
    }
    return packets;
}

QList<QList<float>> feed(OrvexDataGrabber& grabber, const QList<QByteArray>& packets, int* lostTotal = nullptr)
{
    QList<QList<float>> last;
    for (const QByteArray& p : packets) {
        int lost = 0;
        const QList<QList<float>> block = grabber.addData(p, &lost);
        if (lostTotal)
            *lostTotal += lost;
        if (!block.isEmpty())
            last = block;
    }
    return last;
}

QList<float> microvolts(const QList<int>& steps)
{
    QList<float> values;
    for (int s : steps)
        values.append(float(s * MicrovoltsPerStep));
    return values;
}
}

class TestOrvexDataGrabber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void samplesAre24BitBigEndian()
    {
        const QByteArray bytes = QByteArray::fromHex("800000" "7fffff" "000001" "ffffff" "123456");
        QCOMPARE(OrvexDataGrabber::decodeSample(bytes.constData()), float(-8388608 * MicrovoltsPerStep));
        QCOMPARE(OrvexDataGrabber::decodeSample(bytes.constData() + 3), float(8388607 * MicrovoltsPerStep));
        QCOMPARE(OrvexDataGrabber::decodeSample(bytes.constData() + 6), float(MicrovoltsPerStep));
        QCOMPARE(OrvexDataGrabber::decodeSample(bytes.constData() + 9), float(-MicrovoltsPerStep));
        QCOMPARE(OrvexDataGrabber::decodeSample(bytes.constData() + 12), float(0x123456 * MicrovoltsPerStep));
        QCOMPARE(OrvexDataGrabber::decodeSample(bytes.constData()), -400000.0f);
    }

    void onlyTwentyBytePacketsCount()
    {
        for (auto format : { OrvexFrameDefault, OrvexFrame6x3 }) {
            OrvexDataGrabber grabber(6, format);
            for (int size : { 0, 19, 21, 40 }) {
                int lost = -1;
                QVERIFY(grabber.addData(QByteArray(size, char(7)), &lost).isEmpty());
                QCOMPARE(lost, 0);
            }
            QCOMPARE(grabber.lostPackets(), 0);
        }
    }

    void defaultFrameDistribution_data()
    {
        QTest::addColumn<int>("channels");
        // Value positions (0..7) of one group that each channel receives, in time order.
        QTest::addColumn<QList<QList<int>>>("positions");
        QTest::newRow("1") << 1 << QList<QList<int>>{ { 0, 1, 2, 3, 4, 5, 6, 7 } };
        QTest::newRow("2") << 2 << QList<QList<int>>{ { 0, 2, 4, 6 }, { 1, 3, 5, 7 } };
        QTest::newRow("4") << 4 << QList<QList<int>>{ { 0 }, { 1 }, { 2 }, { 3 } };
        QTest::newRow("6") << 6 << QList<QList<int>>{ { 0 }, { 2 }, { 3 }, { 4 }, { 5 }, { 7 } };
        QTest::newRow("8") << 8 << QList<QList<int>>{ { 0 }, { 1 }, { 2 }, { 3 }, { 4 }, { 5 }, { 6 }, { 7 } };
    }

    void defaultFrameDistribution()
    {
        QFETCH(int, channels);
        QFETCH(QList<QList<int>>, positions);
        OrvexDataGrabber grabber(channels, OrvexFrameDefault);
        const int first = -1000; // negative values exercise the sign
        const QList<QByteArray> packets = frame(7, first);
        for (int i = 0; i < 3; ++i)
            QVERIFY(grabber.addData(packets[i]).isEmpty());
        const QList<QList<float>> block = grabber.addData(packets[3]);

        QList<QList<float>> expected(channels);
        for (int group = 0; group < 3; ++group) {
            for (int c = 0; c < channels; ++c) {
                for (int position : positions[c])
                    expected[c] += microvolts({ first + 8 * group + position });
            }
        }
        QCOMPARE(block, expected);
        QCOMPARE(grabber.samplesPerFrame(), int(expected[0].size()));
    }

    void unsupportedChannelCountYieldsNothing()
    {
        for (int channels : { 0, 3, 5, 16 }) {
            OrvexDataGrabber grabber(channels, OrvexFrameDefault);
            QVERIFY(feed(grabber, frame(0, 1)).isEmpty());
            QVERIFY(grabber.addLostPackets(4).isEmpty());
        }
    }

    void sixByThreeCountersWrap()
    {
        OrvexDataGrabber grabber(6, OrvexFrame6x3);
        grabber.setDeviceName(QStringLiteral("Orvex-6G (5)"));
        int lost = 0;
        for (int counter : { 254, 255, 0, 1 }) {
            const QList<QList<float>> block = grabber.addData(packet(counter, { counter, -1, 2, -3, 4, -5 }), &lost);
            QCOMPARE(lost, 0);
            QCOMPARE(block.size(), 6);
            QCOMPARE(block[0], microvolts({ counter }));
            QCOMPARE(block[5], microvolts({ -5 }));
        }
        QCOMPARE(grabber.lostPackets(), 0);

        // 1 -> 5: a break, counted once and reported with both counters; the packet still decodes.
        const QList<QList<float>> block = grabber.addData(packet(5, { 9, 9, 9, 9, 9, 9 }), &lost);
        QCOMPARE(lost, 1);
        QCOMPARE(grabber.lostPackets(), 1);
        QCOMPARE(block[3], microvolts({ 9 }));
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("Lost packet [6ch] Orvex-6G (5) n5 o1")));
    }

    void defaultFrameCountersWrap()
    {
        OrvexDataGrabber grabber(8, OrvexFrameDefault);
        int lost = 0;
        QCOMPARE(feed(grabber, frame(252, 0) + frame(256, 24) + frame(260, 48), &lost)[0], microvolts({ 48, 56, 64 }));
        QCOMPARE(lost, 0);
        QCOMPARE(grabber.lostPackets(), 0);
    }

    // A break inside the queue: the two packets before it and the one missing are stood in
    // for (3 packets = 3/4 of a frame's 3 samples -> 2 samples, one quarter carried), each
    // channel holding its last value; the packets after the break begin the next frame.
    void lossInsideAFrameIsStoodIn()
    {
        OrvexDataGrabber grabber(4, OrvexFrameDefault);
        grabber.setDeviceName(QStringLiteral("OX4 (1)"));
        QCOMPARE(feed(grabber, frame(0, 0))[3], microvolts({ 3, 11, 19 }));

        const QList<QByteArray> next = frame(4, 100);
        int lost = 0;
        QVERIFY(grabber.addData(next[0]).isEmpty());
        QVERIFY(grabber.addData(next[1]).isEmpty());
        QVERIFY(grabber.addData(next[3]).isEmpty()); // counter 7: 6 is missing
        const QList<QList<float>> standIn = grabber.addData(packet(8, { 500, 501, 502, 503, 504, 505 }), &lost);
        QCOMPARE(lost, 3);
        QCOMPARE(grabber.lostPackets(), 3);
        QCOMPARE(standIn.size(), 4);
        QCOMPARE(standIn[0], microvolts({ 16, 16 }));
        QCOMPARE(standIn[3], microvolts({ 19, 19 }));
        // The four counters without the device name (hence the two spaces).
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("Lost packet [6ch]  1:4 2:5 3:7 4:8")));
        QVERIFY(GlobalConsole::currentText().contains(QStringLiteral("Data grabber lost packet")));

        // 7 and 8 stay queued; 9 and 10 complete a frame that starts with packet 7.
        QVERIFY(grabber.addData(packet(9, {})).isEmpty());
        const QList<QList<float>> resumed = grabber.addData(packet(10, {}), &lost);
        QCOMPARE(lost, 0);
        QCOMPARE(resumed[0], microvolts({ 118, 502, 0 }));
        // The carried quarter makes the next single lost packet worth one sample.
        QCOMPARE(grabber.addLostPackets(1)[0].size(), 1);
        QCOMPARE(grabber.lostPackets(), 4);
    }

    // A whole frame missing between two frames: stand-ins first, then the frame itself.
    void lossBetweenFramesKeepsTheFrame()
    {
        OrvexDataGrabber grabber(2, OrvexFrameDefault);
        feed(grabber, frame(10, 0));
        int lost = 0;
        const QList<QList<float>> block = feed(grabber, frame(18, 24), &lost);
        QCOMPARE(lost, 4);
        QCOMPARE(grabber.lostPackets(), 4);
        QCOMPARE(block[0].size(), 12 + 12);
        QCOMPARE(block[1].mid(0, 12), QList<float>(12, float(23 * MicrovoltsPerStep)));
        QCOMPARE(block[1].mid(12, 4), microvolts({ 25, 27, 29, 31 }));
    }

    void lostPacketsBeforeAnyDataAreZeros()
    {
        OrvexDataGrabber grabber(1, OrvexFrameDefault);
        QCOMPARE(grabber.addLostPackets(2), QList<QList<float>>{ QList<float>(12, 0.0f) });
        QVERIFY(grabber.addLostPackets(0).isEmpty());
        QVERIFY(grabber.addLostPackets(-3).isEmpty());
        QCOMPARE(grabber.lostPackets(), 2);
    }
};

QTEST_GUILESS_MAIN(TestOrvexDataGrabber)
#include "tst_orvexdatagrabber.moc"
