#include "core/AbstractDevice.h"
#include "core/DataCounter.h"

#include <QtTest>

#include <cmath>

namespace {
class PlainDevice : public AbstractDevice
{
public:
    using AbstractDevice::setConnectedState;
    bool open() override { return true; }
    void close() override {}
    bool start(int) override { return true; }
    void stop() override {}
    bool hasBattery() override { return true; }
    bool hasImpedance() override { return false; }
    QString deviceType() override { return QStringLiteral("Plain"); }
    QString deviceVersion() override { return QStringLiteral("1"); }
};
}

class TestAbstractDevice : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void batteryIsCappedAndReportedOnChange()
    {
        PlainDevice device;
        QSignalSpy spy(&device, &AbstractDevice::batteryLevelUpdated);
        QCOMPARE(device.batteryLevel(), -1);
        device.setBatteryLevel(150);
        QCOMPARE(device.batteryLevel(), 100);
        device.setBatteryLevel(120); // still 100: no change, no signal
        device.setBatteryLevel(-5);
        QCOMPARE(device.batteryLevel(), -5);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0).at(0).toInt(), 100);
    }

    void connectionStateSignals()
    {
        PlainDevice device;
        QSignalSpy changed(&device, &AbstractDevice::connectionStateChanged);
        QSignalSpy connected(&device, &AbstractDevice::connected);
        QSignalSpy disconnected(&device, &AbstractDevice::disconnected);
        device.setConnectedState(AbstractDevice::CONNECTED);
        device.setConnectedState(AbstractDevice::CONNECTED);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(connected.count(), 1);
        device.setConnectedState(AbstractDevice::AWAITING_CONNECTION);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(disconnected.count(), 0);
        device.setConnectedState(AbstractDevice::NOT_CONNECTED);
        QCOMPARE(disconnected.count(), 1);
    }

    void firstDataMarksConnected()
    {
        PlainDevice device;
        QSignalSpy data(&device, &AbstractDevice::dataReady);
        QSignalSpy connected(&device, &AbstractDevice::connected);
        device.emitSample({});
        QCOMPARE(data.count(), 0);
        QCOMPARE(device.counter()->packets(), 0);

        device.emitSample({ { 1, 2, 3 }, { 4, 5, 6 } });
        device.emitSample({ { 7 }, { 8 } });
        QCOMPARE(data.count(), 2);
        QCOMPARE(connected.count(), 1);
        QCOMPARE(device.connectionState(), AbstractDevice::CONNECTED);
        QCOMPARE(device.counter()->packets(), 4);
    }

    void privateNameFallsBackToName()
    {
        PlainDevice device;
        QCOMPARE(device.privateName(), QString());
    }

    void dataRateOverSlidingWindow()
    {
        DataCounter counter;
        qint64 now = 1'000'000;
        counter.setTimeSource([&now] { return now; });
        counter.reset(1000);
        QCOMPARE(counter.dataRate(), 0.0);

        // One frame at the current millisecond: the divisor is zero.
        counter.addFrame(10);
        QVERIFY(std::isinf(counter.dataRate()));

        for (int i = 1; i <= 10; ++i) {
            now += 100;
            counter.addFrame(25);
        }
        // Frames from now-1000 on: the first (10 samples at t0) is exactly at the cut-off.
        QCOMPARE(counter.dataRate(), (10 + 250) * 1000.0 / 1000.0);
        now += 50;
        // The frame at t0 is now older than the window; the oldest kept is at t0+100.
        QCOMPARE(counter.dataRate(), 250 * 1000.0 / 950.0);
        QCOMPARE(counter.packets(), 260);
        QCOMPARE(counter.lastDataTimestamp(), now - 50);

        counter.addFrame(0); // ignored
        QCOMPARE(counter.packets(), 260);

        counter.reset(-1); // interval kept
        QCOMPARE(counter.intervalMS(), 1000);
        QCOMPARE(counter.packets(), 0);
        QCOMPARE(counter.dataRate(), 0.0);
        QCOMPARE(counter.lastDataTimestamp(), now);
    }
};

QTEST_GUILESS_MAIN(TestAbstractDevice)
#include "tst_abstractdevice.moc"
