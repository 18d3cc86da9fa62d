#pragma once

#include <QList>
#include <QPair>
#include <QProcess>
#include <QString>
#include <QStringList>

// What the strict outside reader (tests/formats/edf_strict_check, over libedf) read of a file.
struct StrictEdfRead
{
    struct Signal
    {
        QString label;
        qint64 samples = 0;
        double sum = 0;
    };
    bool ok = false;
    QString refusal; // the reader's output when it refused the file
    int fileType = -1; // 1 EDF+, 3 BDF+
    qint64 records = 0;
    QList<Signal> signalList;
    QList<QPair<qint64, QString>> annotations; // onset in 100 ns, text

    static StrictEdfRead of(const QString& path)
    {
        StrictEdfRead read;
        QProcess checker;
        checker.start(QStringLiteral(ORVEX_EDF_STRICT_CHECK), { path });
        if (!checker.waitForFinished(60000)) {
            read.refusal = QStringLiteral("the checker did not finish");
            return read;
        }
        const QStringList lines = QString::fromUtf8(checker.readAllStandardOutput()).split(QLatin1Char('\n'));
        const QStringList first = lines.value(0).split(QLatin1Char(' '));
        read.ok = checker.exitCode() == 0 && first.value(0) == QLatin1String("ok");
        if (!read.ok) {
            read.refusal = lines.value(0);
            return read;
        }
        read.fileType = first.value(1).toInt();
        read.records = first.value(2).toLongLong();
        for (const QString& line : lines) {
            const QStringList parts = line.split(QLatin1Char(' '));
            if (parts.value(0) == QLatin1String("signal"))
                read.signalList.append({ parts.value(1), parts.value(2).toLongLong(), parts.value(3).toDouble() });
            else if (parts.value(0) == QLatin1String("annotation"))
                read.annotations.append({ parts.value(1).toLongLong(), parts.mid(2).join(QLatin1Char(' ')) });
        }
        return read;
    }
};
