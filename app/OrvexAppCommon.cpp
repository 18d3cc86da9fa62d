#include "app/OrvexAppCommon.h"

#include "app/ui/PlotTypes.h"
#include "app/ui/UiModel.h"
#include "services/GlobalConsole.h"

#include <QCoreApplication>
#include <QQmlEngine>

OrvexAppCommon::OrvexAppCommon()
{
    QCoreApplication::setApplicationName(QString::fromLatin1(applicationName()));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORVEX_VERSION));
    const char* uri = "OrvexPro";
    const QString reason = QStringLiteral("made by the application");
    qmlRegisterUncreatableType<UiModel>(uri, 1, 0, "UiModel", reason);
    qmlRegisterUncreatableType<DevicesController>(uri, 1, 0, "DevicesController", reason);
    qmlRegisterUncreatableType<SignalController>(uri, 1, 0, "SignalController", reason);
    qmlRegisterUncreatableType<SpectrumController>(uri, 1, 0, "SpectrumController", reason);
    qmlRegisterUncreatableType<IndicesController>(uri, 1, 0, "IndicesController", reason);
    qmlRegisterUncreatableType<RecordingController>(uri, 1, 0, "RecordingController", reason);
    qmlRegisterUncreatableType<StatusController>(uri, 1, 0, "StatusController", reason);
    qmlRegisterUncreatableType<ChannelListModel>(uri, 1, 0, "ChannelListModel", reason);
    qmlRegisterUncreatableType<SettingsListModel>(uri, 1, 0, "SettingsListModel", reason);
    PlotTypes::registerAll();
}

OrvexAppCommon::~OrvexAppCommon()
{
    GlobalConsole::writeLine(QStringLiteral("OrvexPro ends"));
}
