#include "dsp/Montage.h"
#include "dsp/MontageList.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

MontageChannel fullChannel()
{
    MontageChannel channel(QStringLiteral("O2"), 3, 1, 0.0, 0.0, 0.0, 2.0, 0.5, -5.0);
    channel.color = QStringLiteral("#ff0000");
    channel.filterType = 0;
    return channel;
}

} // namespace

class TestMontage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }
    void writtenFormOmitsDefaults();
    void writtenFormReadsBackEqual();
    void readerAcceptsLongNamesAndAnyCase();
    void unreadableAndDamagedFiles();
    void listOperations();
    void jsonFileNameRule();
    void jsonRoundTrip();
    void montageOperations();
    void sampleFreqReachesEveryChannel();

private:
    QTemporaryDir m_dir;
};

void TestMontage::writtenFormOmitsDefaults()
{
    MontageList list;
    list.addChannel(MontageChannel(QStringLiteral("Fp1"), 0, -1, 30.0, 0.5, 50.0, 1.0, 1.0, 0.0));
    list.addChannel(fullChannel());
    const QString noFrequency = list.saveAsString();
    QVERIFY(noFrequency.contains(QLatin1String("<Montage>")));

    list.setFrequency(250.0f);
    QCOMPARE(list.saveAsString(),
             QStringLiteral("<?xml version=\"1.0\"?>\n"
                            "<Montage frequency=\"250\">\n"
                            "    <Channel name=\"Fp1\" G1=\"0\" LP=\"30\" HP=\"0.5\" BS=\"50\"/>\n"
                            "    <Channel name=\"O2\" G1=\"3\" G2=\"1\" LP=\"0\" HP=\"0\" BS=\"0\" color=\"#ff0000\""
                            " offset=\"-5\" scale=\"2\" visualScale=\"0.5\" FT=\"0\"/>\n"
                            "</Montage>\n"));
    list.setFrequency(-1.0f);
    QVERIFY(!list.saveAsString().contains(QLatin1String("frequency")));
}

void TestMontage::writtenFormReadsBackEqual()
{
    MontageList list;
    list.setFrequency(125.5f);
    list.setTitle(QStringLiteral("Two & \"more\""));
    list.addChannel(MontageChannel(QStringLiteral("Fp1<"), 0, -1, 30.0, 0.5, 50.0, 1.0, 1.0, 0.0));
    list.addChannel(fullChannel());
    const QString path = m_dir.filePath(QStringLiteral("back.xml"));
    QVERIFY(list.saveAs(path));
    QCOMPARE(list.path(), path);

    std::unique_ptr<MontageList> back(MontageList::read(path));
    QCOMPARE(back->channels(), list.channels());
    QCOMPARE(back->frequency(), 125.5f);
    QCOMPARE(back->title(), list.title());
    QCOMPARE(back->path(), path);

    // Orders and the user tag are not part of the file.
    MontageChannel orders = fullChannel();
    orders.lowPassOrder = 2;
    orders.userTag = 9;
    back->setChannels({orders});
    QVERIFY(back->save(path));
    QVERIFY(list.reload());
    QCOMPARE(list.channels().size(), 1);
    QCOMPARE(list.channels().first(), fullChannel());
}

void TestMontage::readerAcceptsLongNamesAndAnyCase()
{
    const QString path = m_dir.filePath(QStringLiteral("long.xml"));
    QVERIFY(writeFile(path,
                      "<?xml version=\"1.0\"?>\n<MONTAGE Frequency=\"500\" TITLE=\"t\"><other><x/></other>"
                      "<channel NAME=\"C3\" g1=\"2\" G2=\"4\" lpf=\"30\" hpf=\"0.5\" BSF=\"60\" VisualScale=\"3\""
                      " FilterType=\"2\" unknown=\"7\" scale=\"abc\"/>"
                      "<cHaNnEl name=\"C4\"/></MONTAGE>"));
    MontageList list;
    QCOMPARE(MontageList::read(path, &list), &list);
    QCOMPARE(list.frequency(), 500.0f);
    QCOMPARE(list.title(), QStringLiteral("t"));
    QCOMPARE(list.channels().size(), 2);
    const MontageChannel c3 = list.channels().at(0);
    QCOMPARE(c3.name, QStringLiteral("C3"));
    QCOMPARE(c3.group1, 2);
    QCOMPARE(c3.group2, 4);
    QCOMPARE(c3.lowPass, 30.0);
    QCOMPARE(c3.highPass, 0.5);
    QCOMPARE(c3.bandStop, 60.0);
    QCOMPARE(c3.visualScale, 3.0);
    QCOMPARE(c3.filterType, 2);
    QCOMPARE(c3.scale, 1.0);
    MontageChannel c4;
    c4.name = QStringLiteral("C4");
    QCOMPARE(list.channels().at(1), c4);
}

void TestMontage::unreadableAndDamagedFiles()
{
    MontageList list;
    list.addChannel(fullChannel());
    list.setFrequency(100.0f);
    MontageList::read(m_dir.filePath(QStringLiteral("missing.xml")), &list);
    QVERIFY(list.channels().isEmpty());
    QCOMPARE(list.frequency(), 0.0f);
    QVERIFY(!list.reload());

    const QString damaged = m_dir.filePath(QStringLiteral("damaged.xml"));
    QVERIFY(writeFile(damaged, "<Montage><Channel name=\"A\"/><Channel name=\"B\" G1=\"1\"/><Channel name=\"C"));
    std::unique_ptr<MontageList> partial(MontageList::read(damaged));
    QCOMPARE(partial->channels().size(), 2);
    QCOMPARE(partial->channels().at(1).group1, 1);
    QVERIFY(!partial->reload());

    const QString garbage = m_dir.filePath(QStringLiteral("garbage.xml"));
    QVERIFY(writeFile(garbage, QByteArray("\x00\xff<<>>&&\x01", 9)));
    std::unique_ptr<MontageList> none(MontageList::read(garbage));
    QVERIFY(none->channels().isEmpty());

    QVERIFY(!list.save(m_dir.filePath(QStringLiteral("no/such/folder/x.xml"))));
}

void TestMontage::listOperations()
{
    MontageList list;
    for (int i = 0; i < 4; ++i)
        list.addChannel(MontageChannel(QString::number(i), i, -1, 0, 0, 0, 1, 1, 0));
    QVERIFY(list.moveChannel(0, 3));
    QVERIFY(list.removeChannel(1));
    QVERIFY(!list.removeChannel(3));
    QVERIFY(!list.moveChannel(0, 3));
    QStringList names;
    for (const MontageChannel& channel : list.channels())
        names << channel.name;
    QCOMPARE(names, QStringList({"1", "3", "0"}));
}

void TestMontage::jsonFileNameRule()
{
    Montage montage;
    montage.fromJson(QJsonObject{{"name", "Default"}, {"file_name", "ignored.xml"}});
    QCOMPARE(montage.getMontageFileName(), QStringLiteral("Default.xml"));
    montage.fromJson(QJsonObject{{"name", "Mine.xml"}});
    QCOMPARE(montage.getMontageName(), QStringLiteral("Mine.xml"));
    QCOMPARE(montage.getMontageFileName(), QStringLiteral("Mine.xml"));
    QCOMPARE(montage.toJson().value("file_name").toString(), QStringLiteral("Mine.xml"));
}

void TestMontage::jsonRoundTrip()
{
    Montage montage(QStringLiteral("Pair"));
    montage.push_back(new AmplifierChannel(QStringLiteral("index=0;name=Fp1;type=EEG;g1=1;g2=2;scale=1;LPF=30;HPF=0.5;BSO=50;")));
    montage.push_back(new AmplifierChannel(QStringLiteral("index=1;name=Heart;type=ECG;g1=0;g2=0;scale=2;LPF=40;HPF=1;BSO=0;")));
    const QJsonObject json = montage.toJson();
    QCOMPARE(json.value("chan_list").toArray().size(), 2);

    Montage back;
    back.push_back(new AmplifierChannel());
    back.fromJson(json);
    QCOMPARE(back.getMontageName(), QStringLiteral("Pair"));
    QCOMPARE(back.size(), 2);
    for (int i = 0; i < 2; ++i)
        QCOMPARE(back[i]->makeTextView(), montage[i]->makeTextView());
    QCOMPARE(back.toJson(), json);
}

void TestMontage::montageOperations()
{
    Montage montage(QStringLiteral("Ops"));
    montage.resize(3);
    QCOMPARE(montage.size(), 3);
    QCOMPARE(montage[2]->getIndex(), 2);
    montage[0]->setChannelName(QStringLiteral("A"));
    montage[1]->setChannelName(QStringLiteral("B"));
    montage[2]->setChannelName(QStringLiteral("C"));
    montage[2]->setChannelType(ChannelType_ECG);
    auto* inserted = new AmplifierChannel(9, 1.0f, ChannelType_ECG);
    inserted->setChannelName(QStringLiteral("X"));
    montage.insert(1, inserted);
    montage.insert(1, nullptr);
    QCOMPARE(montage.getChannelNames(), QList<QString>({"A", "X", "B", "C"}));
    QCOMPARE(montage.getIndexByName(QStringLiteral("B")), 2);
    QCOMPARE(montage.getIndexByName(QStringLiteral("none")), -1);
    QCOMPARE(montage.getECGChannel(), QSet<int>({1, 3}));

    std::unique_ptr<AmplifierChannel> taken(montage.erase(1));
    QCOMPARE(taken.get(), inserted);
    QVERIFY(montage.erase(7) == nullptr);
    QVERIFY(montage.removeChannel(0));
    QVERIFY(!montage.removeChannel(-1));
    QCOMPARE(montage.getChannelNames(), QList<QString>({"B", "C"}));
    QVERIFY(montage[2] == nullptr);

    QList<AmplifierChannel*> copies{new AmplifierChannel()};
    delete copies.first();
    montage.copyChannels(copies);
    QCOMPARE(copies.size(), 2);
    QVERIFY(copies.at(0) != montage[0]);
    QCOMPARE(copies.at(1)->getName(), QStringLiteral("C"));
    qDeleteAll(copies);

    montage.rebuildMontageChannelList();
    QCOMPARE(montage.getMontageChannelList().size(), 2);
    QCOMPARE(montage.getMontageChannelList().at(1).group1, 2);
    montage.makeChannelDataList();
    QCOMPARE(montage.getChannelDataList().size(), 2);

    montage.resize(1);
    QCOMPARE(montage.getChannelNames(), QList<QString>({"B"}));
    montage.clearChannel();
    QVERIFY(montage.empty());
}

void TestMontage::sampleFreqReachesEveryChannel()
{
    Montage montage;
    montage.resize(3);
    QCOMPARE(montage[0]->getFilterRef().sampleRate, 100.0f);
    montage[1]->setHPF(3.0f);
    montage.setCurrentSampleFreq(250.0f);
    QCOMPARE(montage.getCurrentSampleFreq(), 250.0f);
    for (int i = 0; i < montage.size(); ++i)
        QCOMPARE(montage[i]->getFilterRef().sampleRate, 250.0f);
    QCOMPARE(montage[1]->getCurrentIndexHPF(), 4);
    montage.createChannelFilterList();
    QCOMPARE(montage.getChannelFilterList().at(2).sampleRate, 250.0f);
    montage.removeChannelFilterList();
    QVERIFY(montage.getChannelFilterList().isEmpty());
}

QTEST_GUILESS_MAIN(TestMontage)
#include "tst_montage.moc"
