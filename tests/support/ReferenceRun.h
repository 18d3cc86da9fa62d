#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QString>
#include <QStringList>

// Runs another program (a reference script, a foreign converter) to completion and keeps what
// it printed; a failure to start, a time-out or a non-zero exit leaves `error` set.
struct ReferenceRun
{
    bool ok = false;
    QByteArray out;
    QByteArray err;
    QString error;

    static ReferenceRun program(const QString& binary, const QStringList& arguments, int timeoutMs = 120000)
    {
        ReferenceRun run;
        QProcess process;
        process.start(binary, arguments);
        if (!process.waitForFinished(timeoutMs)) {
            process.kill();
            process.waitForFinished();
            run.error = QStringLiteral("%1 did not finish: %2").arg(binary, process.errorString());
            return run;
        }
        run.out = process.readAllStandardOutput();
        run.err = process.readAllStandardError();
        run.ok = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
        if (!run.ok)
            run.error = QStringLiteral("%1 failed (%2): %3").arg(binary).arg(process.exitCode())
                            .arg(QString::fromUtf8(run.err.right(2000)));
        return run;
    }

    // A script run by the reference python (Debian's, with numpy/scipy/mne beside it).
    static ReferenceRun python(const QString& script, const QStringList& arguments, int timeoutMs = 120000)
    {
        return program(QStringLiteral(ORVEX_REFERENCE_PYTHON), QStringList{script} + arguments, timeoutMs);
    }

    // What MNE reads from each file (see tests/formats/edf_mne_reference.py).
    static QJsonArray mne(const QStringList& paths, bool withData, QString* error)
    {
        QStringList arguments;
        if (!withData)
            arguments << QStringLiteral("--no-data");
        const ReferenceRun run =
            python(QStringLiteral(ORVEX_SOURCE_DIR "/tests/formats/edf_mne_reference.py"), arguments + paths);
        if (!run.ok) {
            *error = run.error;
            return {};
        }
        return QJsonDocument::fromJson(run.out).array();
    }
};
