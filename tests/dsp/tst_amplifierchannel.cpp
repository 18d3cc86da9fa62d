#include "dsp/AmplifierChannel.h"

#include <QJsonDocument>
#include <QtTest>

static const QString FullText = QStringLiteral("index=3;name=Fp1;type=ECG;g1=0;g2=0;scale=1;LPF=30;HPF=0.5;BSO=50;");

class TestAmplifierChannel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupRangeIsFilledOnce()
    {
        AmplifierChannel first;
        QCOMPARE(AmplifierChannel::st_GroupRange.size(), 137);
        QCOMPARE(AmplifierChannel::st_GroupRange.last(), QStringLiteral("136"));
        AmplifierChannel::st_GroupRange[5] = QStringLiteral("five");
        AmplifierChannel second(2, 1.0f, ChannelType_EMG);
        QCOMPARE(AmplifierChannel::st_GroupRange.size(), 137);
        QCOMPARE(AmplifierChannel::st_GroupRange.at(5), QStringLiteral("five"));
        AmplifierChannel::st_GroupRange[5] = QStringLiteral("5");
    }

    // Each text is parsed into a channel that first held FullText; the result is shown in the
    // text form, which the first row proves to be exact.
    void parseText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::addRow("full text round trip") << FullText << FullText;
        QTest::addRow("numbers in g format, 6 digits")
            << "index=7;name=T°;type=Temp;g1=0;g2=0;scale=0.25;LPF=0.1234567;HPF=0;BSO=0;"
            << "index=7;name=T°;type=Temp;g1=0;g2=0;scale=0.25;LPF=0.123457;HPF=0;BSO=0;";
        QTest::addRow("seven parts, keys ignored")
            << "a=3;b=Fp1;c=ECG;d=1;e=2;f=2;g=40" << "index=3;name=Fp1;type=ECG;g1=1;g2=2;scale=2;LPF=40;HPF=0.5;BSO=50;";
        QTest::addRow("position decides, bad numbers read 0")
            << "scale=9;index=x;type=Nope;g1=1;g2=1;name=oops;LPF=1;HPF=2;BSO=3;extra=4"
            << "index=9;name=x;type=EEG;g1=1;g2=1;scale=0;LPF=1;HPF=2;BSO=3;";
        QTest::addRow("six parts change nothing") << "index=9;name=X;type=EMG;g1=4;g2=5;scale=7" << FullText;
        QTest::addRow("empty changes nothing") << "" << FullText;
        QTest::addRow("parts without = skipped")
            << "index=4;name;type=EMG;;;;" << "index=4;name=Fp1;type=EMG;g1=0;g2=0;scale=1;LPF=30;HPF=0.5;BSO=50;";
    }

    void parseText()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        AmplifierChannel channel(FullText);
        channel.parseStringData(text);
        QCOMPARE(QString::fromUtf8(channel.makeTextView()), expected);
    }

    void parserStoresWithoutExtendingChoices()
    {
        AmplifierChannel channel(QStringLiteral("index=0;name=A;type=EEG;g1=0;g2=0;scale=1;LPF=33;HPF=0.7;BSO=55;"));
        QCOMPARE(channel.getLPF(), 33.0f);
        QCOMPARE(channel.getLPFValues().size(), 7);
        QCOMPARE(channel.getCurrentIndexLPF(), 0);
        QCOMPARE(channel.getBSFValues(), QStringList({"0", "50", "60"}));
    }

    void setterExtendsAndSortsChoices()
    {
        AmplifierChannel channel;
        channel.setHPF(3.0f);
        QCOMPARE(channel.getHPFValues(), QStringList({"0", "0.5", "1", "2", "3", "5", "10", "20", "50"}));
        QCOMPARE(channel.getCurrentIndexHPF(), 4);
        channel.setHPF(3.0f);
        QCOMPARE(channel.getHPFValues().size(), 9);
        channel.setLPF(100.0f);
        QCOMPARE(channel.getCurrentIndexLPF(), 7);
        channel.setBSF(50.0f);
        QCOMPARE(channel.getBSFValues().size(), 3);
        QCOMPARE(channel.getCurrentIndexBSF(), 1);
        // The filter view is built but never cached, so it stays empty; screens rely on this.
        QCOMPARE(channel.getTextFilterView(), QString());

        AmplifierChannel::Filters filters;
        filters.hpfChoices.clear();
        filters.hpf = 1.0f;
        channel.setFilterData(filters);
        QCOMPARE(channel.getCurrentIndexHPF(), 0);
        QVERIFY(channel.getHPFValues().isEmpty());
    }

    void typeTextIsCaseSensitive()
    {
        AmplifierChannel channel;
        QList<int> types; // an unknown text sets EEG, it does not keep the previous type
        for (const char* text : {"Temp", "eeg", "Resp", "RESP", "Temp "}) {
            channel.setChannelType(ChannelType_GSR);
            channel.setTextChannelType(QString::fromUtf8(text));
            types << channel.getChannelType();
        }
        QCOMPARE(types, QList<int>({7, 0, 4, 0, 0}));
        channel.setChannelType(static_cast<ChannelType>(8));
        QCOMPARE(channel.getTextType(), QString());
    }

    // Column 6 is the high-pass value while the text form's sixth key carries the low-pass.
    void columnsAndTextFormDiffer()
    {
        const AmplifierChannel channel(QStringLiteral("index=5;name=Cz;type=GSR;g1=12;g2=136;scale=1.5;LPF=40;HPF=0.5;BSO=60;"));
        QStringList columns;
        for (int column = -1; column <= 9; ++column)
            columns << channel.getTextValue(column);
        QCOMPARE(columns, QStringList({"", "5", "GSR", "Cz", "12", "136", "1.5", "0.5", "40", "60", ""}));
    }

    void jsonRoundTripAndMissingKeys()
    {
        AmplifierChannel channel(QStringLiteral("index=4;name=O1;type=PPG;g1=3;g2=4;scale=2.5;LPF=35;HPF=0.25;BSO=50;"));
        const QJsonObject json = channel.toJson();
        QCOMPARE(QJsonDocument(json).toJson(QJsonDocument::Compact),
                 QByteArray(R"({"G1":3,"G2":4,"filters":{"BSF":50,"HPF":0.25,"LPF":35},)"
                            R"("index":4,"name":"O1","scale":2.5,"type":6})"));
        AmplifierChannel back(json);
        QCOMPARE(back.makeTextView(), channel.makeTextView());
        QCOMPARE(back.getLPFValues().size(), 7); // reading does not extend the menus

        AmplifierChannel empty(QJsonObject{{"name", "X"}});
        QCOMPARE(QString::fromUtf8(empty.makeTextView()),
                 QStringLiteral("index=0;name=X;type=EEG;g1=0;g2=0;scale=0;LPF=0;HPF=0;BSO=0;"));
    }

    void copiesAreIndependent()
    {
        AmplifierChannel channel(1, 1.0f, ChannelType_ECG);
        channel.setHPF(7.0f);
        AmplifierChannel copy(&channel);
        AmplifierChannel assigned;
        assigned = channel;
        channel.setHPF(8.0f);
        QCOMPARE(copy.getHPF(), 7.0f);
        QCOMPARE(copy.getHPFValues().size(), 9);
        QCOMPARE(assigned.getCurrentIndexHPF(), 5);
        const AmplifierChannel* none = nullptr;
        QCOMPARE(AmplifierChannel(none).getScale(), 1.0f);
    }
};

QTEST_GUILESS_MAIN(TestAmplifierChannel)
#include "tst_amplifierchannel.moc"
