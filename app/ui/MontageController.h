#pragma once

#include "app/ui/MontageChannelListModel.h"
#include "app/ui/MontageChannelEditor.h"

#include <QObject>
#include <QStringList>

class CortexCore;
class OrvexModel;

// The running device's montage, edited in place: every change acts on the engine at once (as a
// client's setMontage does) and is refused while recording. Montages are loaded from and saved
// to XML or JSON files, and a file can be tied to a device so it is applied whenever that device
// starts (the DeviceMontages setting).
class MontageController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(MontageChannelListModel* channels READ channels CONSTANT)
    Q_PROPERTY(QStringList typeNames READ typeNames CONSTANT)
    Q_PROPERTY(QStringList fields READ fields CONSTANT)
    Q_PROPERTY(QStringList inputNames READ inputNames NOTIFY stateChanged)
    Q_PROPERTY(QString deviceName READ deviceName NOTIFY stateChanged)
    Q_PROPERTY(double samplingRate READ samplingRate NOTIFY stateChanged)
    Q_PROPERTY(bool canEdit READ canEdit NOTIFY stateChanged)
    // Why the montage cannot be changed right now; empty when it can.
    Q_PROPERTY(QString refusal READ refusal NOTIFY stateChanged)
    // The file applied when the running device starts; empty for its default montage.
    Q_PROPERTY(QString deviceMontage READ deviceMontage NOTIFY stateChanged)
    Q_PROPERTY(QString error READ error NOTIFY messageChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(QString currentFile READ currentFile NOTIFY messageChanged)
public:
    explicit MontageController(OrvexModel* model, QObject* parent = nullptr);

    MontageChannelListModel* channels() { return &m_channels; }
    QStringList typeNames() const { return m_editor.typeNames; }
    QStringList fields() const { return MontageChannelEditor::fields(); }
    QStringList inputNames() const;
    QString deviceName() const;
    double samplingRate() const;
    bool canEdit() const { return refusal().isEmpty(); }
    QString refusal() const;
    QString deviceMontage() const;
    QString error() const { return m_error; }
    QString message() const { return m_message; }
    QString currentFile() const { return m_currentFile; }

    // One cell of the table (see fields()); false with error() set when refused.
    Q_INVOKABLE bool setField(int row, const QString& field, const QString& text);
    // Paths or file URLs, as file dialogs give them. A saved file without a suffix gets ".xml".
    Q_INVOKABLE bool loadFile(const QString& file);
    Q_INVOKABLE bool saveFile(const QString& file);
    // The montage the engine builds for this device by itself.
    Q_INVOKABLE bool restoreDefault();
    // Ties currentFile() to the running device; forgetDeviceMontage unties it.
    Q_INVOKABLE bool useFileForDevice();
    Q_INVOKABLE void forgetDeviceMontage();

Q_SIGNALS:
    void stateChanged();
    void messageChanged();

private:
    bool apply(const QList<MontageChannel>& montage);
    void refresh();
    void report(const QString& error, const QString& message = QString());
    void setDeviceMontage(const QString& file);

    OrvexModel* m_model;
    CortexCore* m_engine;
    MontageChannelListModel m_channels;
    MontageChannelEditor m_editor;
    QString m_error;
    QString m_message;
    QString m_currentFile;
};
