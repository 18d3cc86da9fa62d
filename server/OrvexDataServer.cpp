#include "server/OrvexDataServer.h"

#include "server/DataServerContext.h"
#include "server/commands/AddEDFAnnotation.h"
#include "server/commands/AddFileToRecord.h"
#include "server/commands/AddLogItem.h"
#include "server/commands/BCI.h"
#include "server/commands/BCIs.h"
#include "server/commands/Close.h"
#include "server/commands/Concentration.h"
#include "server/commands/ConcentrationHistory.h"
#include "server/commands/ContinueRecord.h"
#include "server/commands/ControlOptions.h"
#include "server/commands/CurrentDeviceInfo.h"
#include "server/commands/CurrentDevicesInfo.h"
#include "server/commands/DeviceCount.h"
#include "server/commands/DisableDataGrabMode.h"
#include "server/commands/EnableDataGrabMode.h"
#include "server/commands/FilteredData.h"
#include "server/commands/GameManage.h"
#include "server/commands/GetAllSettings.h"
#include "server/commands/GetDataStorageTime.h"
#include "server/commands/GetDeviceInfo.h"
#include "server/commands/GetFavoriteDeviceName.h"
#include "server/commands/GetFilters.h"
#include "server/commands/GetSettings.h"
#include "server/commands/GetSpectrum.h"
#include "server/commands/GetUserRecords.h"
#include "server/commands/GrabFilteredData.h"
#include "server/commands/GrabRawData.h"
#include "server/commands/GrabSpectrum.h"
#include "server/commands/LastSpectrum.h"
#include "server/commands/ListDevices.h"
#include "server/commands/MakeFavorite.h"
#include "server/commands/Meditation.h"
#include "server/commands/MeditationHistory.h"
#include "server/commands/OpenLink.h"
#include "server/commands/PauseRecord.h"
#include "server/commands/RawData.h"
#include "server/commands/Records.h"
#include "server/commands/Rhythms.h"
#include "server/commands/RhythmsHistory.h"
#include "server/commands/ScreenInfo.h"
#include "server/commands/SetBSF.h"
#include "server/commands/SetDataStorageTime.h"
#include "server/commands/SetFilters.h"
#include "server/commands/SetHPF.h"
#include "server/commands/SetLPF.h"
#include "server/commands/SetMontage.h"
#include "server/commands/SetSettings.h"
#include "server/commands/StartDevice.h"
#include "server/commands/StartRecord.h"
#include "server/commands/StartSearch.h"
#include "server/commands/StopRecord.h"
#include "server/commands/StopSearch.h"
#include "server/commands/UserManage.h"
#include "server/commands/Version.h"

#include <QJsonDocument>

QPointer<HTWSCommand> OrvexDataServer::s_controlOptions;

OrvexDataServer::OrvexDataServer(int httpPort, const QString& folder, DataServerContext* context, QObject* parent,
                                 int wsPort)
    : HTWSServer(httpPort, wsPort, folder, QStringLiteral("OX"), parent)
    , m_context(context)
{
    registerCommands();
    updateCommandReference();
    if (m_context)
        connect(m_context, &DataServerContext::controlOptionsChanged, this, &OrvexDataServer::sendControlOptions,
                Qt::QueuedConnection);
}

HTWSCommand* OrvexDataServer::controlOptionsCommand()
{
    return s_controlOptions;
}

void OrvexDataServer::registerCommands()
{
    // Commands live as long as the server's owner; a server without one keeps them itself.
    QObject* owner = parent() ? parent() : this;
    DataServerContext* c = m_context;
    const QList<HTWSCommand*> commands = {
        new Meditation(c, owner), new MeditationHistory(c, owner), new Concentration(c, owner),
        new ConcentrationHistory(c, owner), new BCI(c, owner), new BCIs(c, owner),
        new EnableDataGrabMode(c, owner), new DisableDataGrabMode(c, owner), new SetDataStorageTime(c, owner),
        new GetDataStorageTime(c, owner), new GetFilters(c, owner), new SetFilters(c, owner), new SetLPF(c, owner),
        new SetBSF(c, owner), new SetHPF(c, owner), new FilteredData(c, owner), new GrabFilteredData(c, owner),
        new RawData(c, owner), new GrabRawData(c, owner), new AddEDFAnnotation(c, owner), new Rhythms(c, owner),
        new RhythmsHistory(c, owner), new LastSpectrum(c, owner), new GrabSpectrum(c, owner),
        new GetSpectrum(c, owner), new StartRecord(c, owner), new StopRecord(c, owner), new PauseRecord(c, owner),
        new ContinueRecord(c, owner), new AddFileToRecord(c, owner), new GetUserRecords(c, owner),
        new Records(c, owner), new StartSearch(c, owner), new StopSearch(c, owner), new ListDevices(c, owner),
        new DeviceCount(c, owner), new GetDeviceInfo(c, owner), new StartDevice(c, owner),
        new CurrentDeviceInfo(c, owner), new CurrentDevicesInfo(c, owner), new MakeFavorite(c, owner),
        new GetFavoriteDeviceName(c, owner), new SetMontage(c, owner), new Version(c, owner),
        new ControlOptions(c, owner), new Close(c, owner), new AddLogItem(c, owner), new ScreenInfo(c, owner),
        new GetAllSettings(c, owner), new GetSettings(c, owner), new SetSettings(c, owner),
        new UserManage(c, owner), new GameManage(c, owner), new OpenLink(c, owner),
    };
    for (HTWSCommand* command : commands) {
        addCommand(command);
        if (qobject_cast<ControlOptions*>(command))
            s_controlOptions = command;
    }
}

void OrvexDataServer::sendControlOptions()
{
    HTWSCommand* command = s_controlOptions;
    if (getClients().isEmpty() || !command)
        return;
    QJsonObject reply;
    QMap<QString, QString> noArguments;
    reply.insert(QStringLiteral("command"), command->name());
    reply.insert(QStringLiteral("result"), command->processCommand(ReferrerWebSocket, reply, noArguments));
    reply.insert(QStringLiteral("time"), timeText());
    sendTextToAllClients(QString::fromUtf8(QJsonDocument(reply).toJson(QJsonDocument::Compact)));
}
