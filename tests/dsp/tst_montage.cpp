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

// Every optional attribute away from its default.
MontageChannel fullChannel()
{
    MontageChannel channel(QStringLiteral("O2"), 3, 1, 0.0, 0.0, 0.0, 2.0, 0.5, -5.0);
    channel.color = QStringLiteral("#ff0000");
    channel.filterType = 0;
    return channel;
}

// Every optional attribute at its default.
MontageChannel plainChannel(const QString& name)
{
    return MontageChannel(name, 0, -1, 30.0, 0.5, 50.0, 1.0, 1.0, 0.0);
}

QStringList namesOf(const QList<MontageChannel>& channels)
{
    QStringList names;
    for (const MontageChannel& channel : channels)
        names << channel.name;
    return names;
}

} // namespace

class TestMontage : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void writtenFormOmitsDefaultsAndReadsBackEqual()
    {
        MontageList list;
        list.addChannel(plainChannel(QStringLiteral("Fp1<")));
        list.addChannel(fullChannel());
        QVERIFY(list.saveAsString().contains(QLatin1String("<Montage>\n")));
        list.setFrequency(-1.0f);
        QVERIFY(!list.saveAsString().contains(QLatin1String("frequency")));
        list.setFrequency(125.5f);
        QCOMPARE(list.saveAsString(),
                 QStringLiteral("<?xml version=\"1.0\"?>\n"
                                "<Montage frequency=\"125.5\">\n"
                                "    <Channel name=\"Fp1&lt;\" G1=\"0\" LP=\"30\" HP=\"0.5\" BS=\"50\"/>\n"
                                "    <Channel name=\"O2\" G1=\"3\" G2=\"1\" LP=\"0\" HP=\"0\" BS=\"0\" color=\"#ff0000\""
                                " offset=\"-5\" scale=\"2\" visualScale=\"0.5\" FT=\"0\"/>\n"
                                "</Montage>\n"));

        list.setTitle(QStringLiteral("Two & \"more\""));
        const QString path = m_dir.filePath(QStringLiteral("back.xml"));
        QVERIFY(list.saveAs(path));
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
        QCOMPARE(list.channels(), QList<MontageChannel>({fullChannel()}));
    }

    void readerAcceptsLongNamesAndAnyCase()
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
        MontageChannel c3(QStringLiteral("C3"), 2, 4, 30.0, 0.5, 60.0, 1.0, 3.0, 0.0);
        c3.filterType = 2;
        MontageChannel c4;
        c4.name = QStringLiteral("C4");
        QCOMPARE(list.channels(), QList<MontageChannel>({c3, c4}));
    }

    void unreadableAndDamagedFiles()
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
        QCOMPARE(namesOf(partial->channels()), QStringList({"A", "B"}));
        QVERIFY(!partial->reload());

        const QString garbage = m_dir.filePath(QStringLiteral("garbage.xml"));
        QVERIFY(writeFile(garbage, QByteArray("\x00\xff<<>>&&\x01", 9)));
        QVERIFY(std::unique_ptr<MontageList>(MontageList::read(garbage))->channels().isEmpty());
        QVERIFY(!list.save(m_dir.filePath(QStringLiteral("no/such/folder/x.xml"))));
    }

    void listOperations()
    {
        MontageList list;
        for (const char* name : {"0", "1", "2", "3"})
            list.addChannel(plainChannel(QLatin1String(name)));
        QVERIFY(list.moveChannel(0, 3));
        QVERIFY(list.removeChannel(1));
        QVERIFY(!list.removeChannel(3));
        QVERIFY(!list.moveChannel(0, 3));
        QCOMPARE(namesOf(list.channels()), QStringList({"1", "3", "0"}));
    }

    // The file name always follows the name: Default gives Default.xml, Mine.xml stays Mine.xml.
    void jsonRoundTripAndFileName()
    {
        Montage montage(QStringLiteral("Default"));
        montage.push_back(new AmplifierChannel(QStringLiteral("index=0;name=Fp1;type=EEG;g1=1;g2=2;scale=1;LPF=30;HPF=0.5;BSO=50;")));
        montage.push_back(new AmplifierChannel(QStringLiteral("index=1;name=Heart;type=ECG;g1=0;g2=0;scale=2;LPF=40;HPF=1;BSO=0;")));
        const QJsonObject json = montage.toJson();
        QCOMPARE(json.value("file_name").toString(), QStringLiteral("Default.xml"));
        QCOMPARE(json.value("chan_list").toArray().at(1).toObject(), montage[1]->toJson());

        Montage back;
        back.push_back(new AmplifierChannel());
        QJsonObject edited = json;
        edited.insert("file_name", "ignored.xml");
        back.fromJson(edited);
        QCOMPARE(back.toJson(), json);
        back.fromJson(QJsonObject{{"name", "Mine.xml"}});
        QCOMPARE(back.getMontageFileName(), QStringLiteral("Mine.xml"));
    }

    void montageOperations()
    {
        Montage montage(QStringLiteral("Ops"));
        montage.resize(3);
        QCOMPARE(montage[2]->getIndex(), 2);
        for (int i = 0; i < 3; ++i)
            montage[i]->setChannelName(QString(QChar('A' + i)));
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
        QVERIFY(montage[2] == nullptr);

        QList<AmplifierChannel*> copies{nullptr};
        montage.copyChannels(copies);
        QCOMPARE(copies.size(), 2);
        QVERIFY(copies.at(0) != montage[0]);
        QCOMPARE(copies.at(1)->getName(), QStringLiteral("C"));
        qDeleteAll(copies);

        montage.resize(1);
        QCOMPARE(montage.getChannelNames(), QList<QString>({"B"}));
    }

    void sampleFreqReachesEveryChannel()
    {
        Montage montage;
        montage.resize(3);
        montage[1]->setHPF(3.0f);
        montage.setCurrentSampleFreq(250.0f);
        for (int i = 0; i < montage.size(); ++i)
            QCOMPARE(montage[i]->getFilterRef().sampleRate, 250.0f);
        QCOMPARE(montage[1]->getCurrentIndexHPF(), 4);
    }
};

QTEST_GUILESS_MAIN(TestMontage)
#include "tst_montage.moc"
