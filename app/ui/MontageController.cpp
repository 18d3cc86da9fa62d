#include "app/ui/MontageController.h"

#include "app/OrvexModel.h"
#include "app/ui/MontageFile.h"
#include "core/CortexCore.h"
#include "core/DefaultMontage.h"
#include "services/GlobalConsole.h"
#include "settings/OrvexSettings.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

namespace {
QString localPath(const QString& file)
{
    const QUrl url(file);
    return url.isLocalFile() ? url.toLocalFile() : file;
}

QStringList namesOf(const QList<MontageChannel>& montage)
{
    QStringList names;
    for (const MontageChannel& channel : montage)
        names.append(channel.name);
    return names;
}
}

MontageController::MontageController(OrvexModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_engine(model->engine())
{
    m_editor.typeNames = MontageFile::typeNames();
    connect(m_engine, &CortexCore::montageChanged, this, &MontageController::refresh);
    connect(m_engine, &CortexCore::dataRecreated, this, &MontageController::refresh);
    connect(m_engine, &CortexCore::channelVisualScaleChanged, this, &MontageController::refresh);
    connect(m_engine, &CortexCore::deviceStopped, this, &MontageController::refresh, Qt::QueuedConnection);
    connect(m_engine, &CortexCore::isRecordingChanged, this, &MontageController::stateChanged);
    // The engine counts as started only once its deviceStarted handlers have run; the device's
    // own montage file, if any, is applied by the engine's DeviceMontageApplier.
    connect(m_engine, &CortexCore::deviceStarted, this, &MontageController::refresh, Qt::QueuedConnection);
    connect(model->settings(), &OrvexSettings::DeviceMontagesChanged, this, &MontageController::stateChanged);
    refresh();
}

QStringList MontageController::inputNames() const
{
    const int count = m_engine->isDeviceStarted() ? m_engine->currentDeviceInfo().currentChannelCount : 0;
    AbstractDevice* device = m_engine->currentDevice();
    QStringList names = device ? device->channelNames().mid(0, count) : QStringList();
    for (int i = int(names.size()); i < count; ++i)
        names.append(QStringLiteral("Input %1").arg(i + 1));
    return names;
}

QString MontageController::deviceName() const
{
    return m_engine->isDeviceStarted() ? m_engine->currentDeviceInfo().name : QString();
}

double MontageController::samplingRate() const
{
    return m_engine->isDeviceStarted() ? m_engine->getCurrentDeviceFrequency() : 0.0;
}

QString MontageController::refusal() const
{
    if (m_engine->isRecording())
        return QStringLiteral("Cannot change montage while recording is on");
    if (!m_engine->isDeviceStarted())
        return QStringLiteral("Start a device to edit its montage");
    return {};
}

QString MontageController::deviceMontage() const
{
    const QJsonObject files = QJsonDocument::fromJson(m_model->settings()->getDeviceMontages().toUtf8()).object();
    return files.value(deviceName()).toString();
}

bool MontageController::setField(int row, const QString& field, const QString& text)
{
    QList<MontageChannel> montage = m_engine->getCurrentMontage();
    m_editor.inputCount = int(inputNames().size());
    m_editor.samplingRate = samplingRate();
    m_editor.commonHighPass = m_engine->getHPF();
    m_editor.commonLowPass = m_engine->getLPF();
    QString error = refusal();
    if (!error.isEmpty() || !m_editor.apply(montage, row, field, text, error)) {
        report(error);
        return false;
    }
    // Only the picture changes: no need to restart the filters and histories.
    if (field == QLatin1String("visualScale")) {
        m_engine->setChannelVisualScale(row, montage[row].visualScale, true);
        report({});
        return true;
    }
    return apply(montage);
}

bool MontageController::apply(const QList<MontageChannel>& montage)
{
    const QString refused = refusal();
    if (!refused.isEmpty()) {
        report(refused);
        return false;
    }
    const bool renamed = namesOf(montage) != m_engine->getCurrentMontageChannelNames();
    if (!m_engine->setMontage(montage)) {
        report(QStringLiteral("This montage reads inputs that %1 does not have").arg(deviceName()));
        return false;
    }
    // The indices find their channels by name.
    if (renamed)
        m_model->startMetering(m_engine);
    report({});
    return true;
}

bool MontageController::loadFile(const QString& file)
{
    const QString path = localPath(file);
    QList<MontageChannel> montage;
    QString error = refusal();
    if (!error.isEmpty() || !MontageFile::load(path, montage, error)) {
        report(error);
        return false;
    }
    if (!apply(montage))
        return false;
    m_currentFile = path;
    report({}, QStringLiteral("Loaded %1").arg(path));
    return true;
}

bool MontageController::saveFile(const QString& file)
{
    QString path = localPath(file);
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".xml");
    QString error;
    if (!MontageFile::save(path, m_engine->getCurrentMontage(), float(samplingRate()), error)) {
        report(error);
        return false;
    }
    m_currentFile = path;
    report({}, QStringLiteral("Saved to %1").arg(path));
    return true;
}

bool MontageController::restoreDefault()
{
    if (!m_engine->isDeviceStarted()) {
        report(refusal());
        return false;
    }
    return apply(DefaultMontage::forDevice(m_engine->currentDeviceInfo(), inputNames()));
}

bool MontageController::useFileForDevice()
{
    if (m_currentFile.isEmpty() || deviceName().isEmpty()) {
        report(QStringLiteral("Load or save a montage file first"));
        return false;
    }
    setDeviceMontage(m_currentFile);
    report({}, QStringLiteral("%1 gets %2 whenever it starts").arg(deviceName(), m_currentFile));
    return true;
}

void MontageController::forgetDeviceMontage()
{
    setDeviceMontage({});
    report({}, QStringLiteral("%1 starts with its default montage").arg(deviceName()));
}

void MontageController::setDeviceMontage(const QString& file)
{
    OrvexSettings* settings = m_model->settings();
    QJsonObject files = QJsonDocument::fromJson(settings->getDeviceMontages().toUtf8()).object();
    if (file.isEmpty())
        files.remove(deviceName());
    else
        files.insert(deviceName(), file);
    settings->setDeviceMontages(QString::fromUtf8(QJsonDocument(files).toJson(QJsonDocument::Compact)));
}

void MontageController::refresh()
{
    m_channels.setChannels(m_engine->isDeviceStarted() ? m_engine->getCurrentMontage() : QList<MontageChannel>(),
                           m_editor.typeNames);
    Q_EMIT stateChanged();
}

void MontageController::report(const QString& error, const QString& message)
{
    m_error = error;
    m_message = message;
    Q_EMIT messageChanged();
}
