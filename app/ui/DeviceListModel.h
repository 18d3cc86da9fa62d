#pragma once

#include "core/DeviceInfo.h"

#include <QAbstractListModel>

// The devices the last search found, virtual ones included, as the devices screen lists them.
class DeviceListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        SerialNumberRole,
        ModelNameRole,
        BatteryRole,      // percent, -1 unknown
        ChannelModesRole, // [{"channels": n, "frequency": hz, "text": "8 channels, 250 Hz"}]
        PreferredChannelsRole,
        PreferredModeRole, // index in channelModes of the preferred channel count, -1 when none
        FavouriteRole,
        KindRole,         // "headset", "generator", "player", "simulated"
        CurrentRole       // the device that streams now
    };

    explicit DeviceListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setDevices(const QList<DeviceInfo>& devices);
    void addOrUpdate(const DeviceInfo& device);
    void setFavourite(const QString& name);
    void setCurrent(const QString& name);
    void setSimulatedName(const QString& name);
    void setBattery(const QString& name, int battery);

    DeviceInfo deviceAt(int row) const;
    int rowOf(const QString& name) const;
    QString kindOf(const QString& name) const;

Q_SIGNALS:
    void countChanged();

private:
    void changed(int row, const QList<int>& roles);

    QList<DeviceInfo> m_devices;
    QString m_favourite;
    QString m_current;
    QString m_simulatedName;
};
