#pragma once

#include "core/CortexCore.h"
#include "server/DataServerContext.h"
#include "settings/KxSettings.h"
#include "settings/OrvexSettings.h"
#include "settings/VirtualDevicesSettings.h"

#include <QDir>
#include <QTemporaryDir>

// A server context with real engines and settings kept in a temporary folder. Each engine
// offers the generator; `startGenerator` starts it on a node.
class FakeServerContext : public DataServerContext
{
public:
    explicit FakeServerContext(int nodeCount = 1, QObject* parent = nullptr)
        : DataServerContext(parent)
    {
        KxSettings::setStorageFolder(m_folder.filePath(QStringLiteral("settings")));
        m_settings = new OrvexSettings(this);
        m_settings->setDataFolder(m_folder.filePath(QStringLiteral("records")));
        m_virtualDevices = new VirtualDevicesSettings(this);
        for (int i = 0; i < nodeCount; ++i) {
            auto* node = new CortexCore(this);
            node->setVirtualDeviceSettings(m_virtualDevices);
            node->setDataFolder(getRecordsFolder());
            m_nodes.append(node);
        }
    }

    int getNodeCount() const override { return int(m_nodes.size()); }
    CortexCore* getNode(int index) const override
    {
        return index >= 0 && index < m_nodes.size() ? m_nodes[index] : nullptr;
    }
    OrvexSettings* getSettings() const override { return m_settings; }
    VirtualDevicesSettings* getVirtualDevicesSettings() const override { return m_virtualDevices; }
    QString getRecordsFolder() const override { return m_folder.filePath(QStringLiteral("records")); }
    UserAccountStore* getUserAccounts() const override { return m_accounts; }
    QStringList getFeedbackScreens() const override { return m_screens; }
    QString getCurrentFeedbackScreen() const override { return m_currentScreen; }
    bool setCurrentFeedbackScreen(const QString& screen) override
    {
        if (!m_screens.contains(screen))
            return false;
        m_currentScreen = screen;
        Q_EMIT currentFeedbackScreenChanged(screen);
        return true;
    }
    void closeApplication() override { ++closeRequests; }
    bool openLink(const QUrl& url) override
    {
        openedLinks.append(url);
        return true;
    }

    // Lists the generator on the node and starts it; true once it streams.
    bool startGenerator(int node = 0, int channels = -1)
    {
        CortexCore* core = m_nodes.value(node);
        core->startDeviceSearch();
        const QList<DeviceInfo> found = core->getFoundDevices();
        return !found.isEmpty() && core->startDevice(found.first(), {}, channels) && core->isDeviceStarted();
    }

    QString folderPath() const { return m_folder.path(); }
    void setUserAccounts(UserAccountStore* accounts) { m_accounts = accounts; }

    int closeRequests = 0;
    QList<QUrl> openedLinks;

private:
    QTemporaryDir m_folder;
    OrvexSettings* m_settings = nullptr;
    VirtualDevicesSettings* m_virtualDevices = nullptr;
    QList<CortexCore*> m_nodes;
    UserAccountStore* m_accounts = nullptr;
    QStringList m_screens { QStringLiteral("bars"), QStringLiteral("balloon") };
    QString m_currentScreen { QStringLiteral("bars") };
};
