#include "dsp/AmplifierChannel.h"

#include <QJsonDocument>
#include <QtTest>

class TestAmplifierChannel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupRangeIsFilledOnce();
    void fullTextRoundTrip();
    void sevenPartTextIgnoresKeys();
    void shortTextChangesNothing();
    void parserStoresWithoutExtendingChoices();
    void setterExtendsAndSortsChoices();
    void typeTextIsCaseSensitive();
    void columnsAndTextFormDiffer();
    void filterViewStaysEmpty();
    void jsonRoundTripAndMissingKeys();
    void copiesAreIndependent();
};

void TestAmplifierChannel::groupRangeIsFilledOnce()
{
    AmplifierChannel first;
    QCOMPARE(AmplifierChannel::st_GroupRange.size(), 137);
    QCOMPARE(AmplifierChannel::st_GroupRange.first(), QStringLiteral("0"));
    QCOMPARE(AmplifierChannel::st_GroupRange.last(), QStringLiteral("136"));
    AmplifierChannel::st_GroupRange[5] = QStringLiteral("five");
    AmplifierChannel second(2, 1.0f, ChannelType_EMG);
    QCOMPARE(AmplifierChannel::st_GroupRange.size(), 137);
    QCOMPARE(AmplifierChannel::st_GroupRange.at(5), QStringLiteral("five"));
    AmplifierChannel::st_GroupRange[5] = QStringLiteral("5");
    QCOMPARE(AmplifierChannel::st_HPFRange.at(1), QStringLiteral("0.5"));
    QCOMPARE(AmplifierChannel::st_TypeRange.size(), 8);
}

void TestAmplifierChannel::fullTextRoundTrip()
{
    const QString text = QStringLiteral("index=3;name=Fp1;type=EEG;g1=0;g2=0;scale=1;LPF=30;HPF=0.5;BSO=50;");
    AmplifierChannel channel(text);
    QCOMPARE(QString::fromUtf8(channel.makeTextView()), text);

    AmplifierChannel other(7, 0.25f, ChannelType_Temp);
    other.setChannelName(QStringLiteral("T°"));
    other.setLPF(0.1234567f);
    const QByteArray written = other.makeTextView();
    QCOMPARE(QString::fromUtf8(written),
             QStringLiteral("index=7;name=T°;type=Temp;g1=0;g2=0;scale=0.25;LPF=0.123457;HPF=0;BSO=0;"));
    QCOMPARE(AmplifierChannel(QString::fromUtf8(written)).makeTextView(), written);
}

void TestAmplifierChannel::sevenPartTextIgnoresKeys()
{
    AmplifierChannel channel(QStringLiteral("a=3;b=Fp1;c=ECG;d=1;e=2;f=2;g=40"));
    QCOMPARE(channel.getIndex(), 3);
    QCOMPARE(channel.getName(), QStringLiteral("Fp1"));
    QCOMPARE(channel.getChannelType(), ChannelType_ECG);
    QCOMPARE(channel.getGroup1(), 1u);
    QCOMPARE(channel.getGroup2(), 2u);
    QCOMPARE(channel.getScale(), 2.0f);
    QCOMPARE(channel.getLPF(), 40.0f);
    QCOMPARE(channel.getHPF(), 0.0f);

    // Keys written in another order still land by position; malformed numbers read as 0.
    channel.parseStringData(QStringLiteral("scale=9;index=x;type=Nope;g1=1;g2=1;name=oops;LPF=1;HPF=2;BSO=3;extra=4"));
    QCOMPARE(channel.getIndex(), 9);
    QCOMPARE(channel.getName(), QStringLiteral("x"));
    QCOMPARE(channel.getChannelType(), ChannelType_EEG);
    QCOMPARE(channel.getScale(), 0.0f);
    QCOMPARE(channel.getBSF(), 3.0f);
}

void TestAmplifierChannel::shortTextChangesNothing()
{
    AmplifierChannel channel(QStringLiteral("index=3;name=Fp1;type=ECG;g1=0;g2=0;scale=1;LPF=30;HPF=0.5;BSO=50;"));
    const QByteArray before = channel.makeTextView();
    channel.parseStringData(QStringLiteral("index=9;name=X;type=EMG;g1=4;g2=5;scale=7"));
    QCOMPARE(channel.makeTextView(), before);
    channel.parseStringData(QString());
    QCOMPARE(channel.makeTextView(), before);
    // Parts without "=" are skipped, the others keep their positions.
    channel.parseStringData(QStringLiteral("index=4;name;type=EMG;;;;"));
    QCOMPARE(channel.getIndex(), 4);
    QCOMPARE(channel.getName(), QStringLiteral("Fp1"));
    QCOMPARE(channel.getChannelType(), ChannelType_EMG);
}

void TestAmplifierChannel::parserStoresWithoutExtendingChoices()
{
    AmplifierChannel channel(QStringLiteral("index=0;name=A;type=EEG;g1=0;g2=0;scale=1;LPF=33;HPF=0.7;BSO=55;"));
    QCOMPARE(channel.getLPF(), 33.0f);
    QCOMPARE(channel.getLPFValues().size(), 7);
    QCOMPARE(channel.getCurrentIndexLPF(), 0);
    QCOMPARE(channel.getCurrentIndexHPF(), 0);
    QCOMPARE(channel.getBSFValues(), QStringList({"0", "50", "60"}));
}

void TestAmplifierChannel::setterExtendsAndSortsChoices()
{
    AmplifierChannel channel;
    QCOMPARE(channel.getHPFValues(), QStringList({"0", "0.5", "1", "2", "5", "10", "20", "50"}));
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

    AmplifierChannel::Filters filters;
    filters.hpfChoices.clear();
    filters.hpf = 1.0f;
    channel.setFilterData(filters);
    QCOMPARE(channel.getCurrentIndexHPF(), 0);
    QVERIFY(channel.getHPFValues().isEmpty());
}

void TestAmplifierChannel::typeTextIsCaseSensitive()
{
    AmplifierChannel channel;
    channel.setTextChannelType(QStringLiteral("Temp"));
    QCOMPARE(channel.getChannelType(), ChannelType_Temp);
    channel.setTextChannelType(QStringLiteral("eeg"));
    QCOMPARE(channel.getChannelType(), ChannelType_EEG);
    channel.setTextChannelType(QStringLiteral("Resp"));
    channel.setTextChannelType(QStringLiteral("RESP"));
    QCOMPARE(channel.getChannelType(), ChannelType_EEG);
    channel.setChannelType(static_cast<ChannelType>(8));
    QCOMPARE(channel.getTextType(), QString());
    QCOMPARE(channel.getTextValue(1), QString());
}

void TestAmplifierChannel::columnsAndTextFormDiffer()
{
    AmplifierChannel channel(5, 1.5f, ChannelType_GSR);
    channel.setChannelName(QStringLiteral("Cz"));
    channel.setGroup1(12);
    channel.setGroup2(136);
    channel.setLPF(40.0f);
    channel.setHPF(0.5f);
    channel.setBSF(60.0f);
    const QStringList expected = {"5", "GSR", "Cz", "12", "136", "1.5", "0.5", "40", "60"};
    for (int column = 0; column < expected.size(); ++column)
        QCOMPARE(channel.getTextValue(column), expected.at(column));
    QCOMPARE(channel.getTextValue(9), QString());
    QCOMPARE(channel.getTextValue(-1), QString());
    QVERIFY(channel.makeTextView().contains("LPF=40;HPF=0.5;"));
    unsigned g1 = 0, g2 = 0;
    channel.getGroupValue(g1, g2);
    QCOMPARE(g1, 12u);
    QCOMPARE(g2, 136u);
}

void TestAmplifierChannel::filterViewStaysEmpty()
{
    AmplifierChannel channel;
    channel.setLPF(30.0f);
    channel.setHPF(1.0f);
    QCOMPARE(channel.getTextFilterView(), QString());
}

void TestAmplifierChannel::jsonRoundTripAndMissingKeys()
{
    AmplifierChannel channel(4, 2.5f, ChannelType_PPG);
    channel.setChannelName(QStringLiteral("O1"));
    channel.setGroup1(3);
    channel.setGroup2(4);
    channel.setLPF(35.0f);
    channel.setHPF(0.25f);
    channel.setBSF(50.0f);
    const QJsonObject json = channel.toJson();
    QCOMPARE(json.value("type").toInt(), 6);
    QCOMPARE(json.value("filters").toObject().value("HPF").toDouble(), 0.25);

    // Through text, as a settings file stores it.
    const QJsonObject parsed = QJsonDocument::fromJson(QJsonDocument(json).toJson()).object();
    AmplifierChannel back(parsed);
    QCOMPARE(back.makeTextView(), channel.makeTextView());
    QCOMPARE(back.toJson(), json);
    // Reading does not extend the menus.
    QCOMPARE(back.getLPFValues().size(), 7);

    AmplifierChannel empty(QJsonObject{{"name", "X"}});
    QCOMPARE(empty.getName(), QStringLiteral("X"));
    QCOMPARE(empty.getIndex(), 0);
    QCOMPARE(empty.getScale(), 0.0f);
    QCOMPARE(empty.getLPF(), 0.0f);
    QCOMPARE(empty.getGroup2(), 0u);
    QCOMPARE(empty.getChannelType(), ChannelType_EEG);
}

void TestAmplifierChannel::copiesAreIndependent()
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
    QVERIFY(copy == QStringLiteral(""));
    const AmplifierChannel* none = nullptr;
    QCOMPARE(AmplifierChannel(none).getScale(), 1.0f);
}

QTEST_GUILESS_MAIN(TestAmplifierChannel)
#include "tst_amplifierchannel.moc"
