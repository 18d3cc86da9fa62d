#include "app/ui/DeviceListModel.h"

#include <QVariantMap>

namespace {
const QString GeneratorName = QStringLiteral("GeneratorDevice");
const QString PlayerName = QStringLiteral("EDFVirtualDevice");

QVariantList describeModes(const DeviceInfo& device)
{
    QVariantList modes;
    for (auto it = device.channelModes.cbegin(); it != device.channelModes.cend(); ++it) {
        QVariantMap mode;
        mode.insert(QStringLiteral("channels"), it.key());
        mode.insert(QStringLiteral("frequency"), double(it.value()));
        mode.insert(QStringLiteral("text"), QStringLiteral("%1 channels, %2 Hz").arg(it.key()).arg(double(it.value())));
        modes.append(mode);
    }
    return modes;
}
}

DeviceListModel::DeviceListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int DeviceListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_devices.size());
}

QVariant DeviceListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_devices.size())
        return {};
    const DeviceInfo& device = m_devices.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return device.name;
    case SerialNumberRole:
        return device.serialNumber;
    case ModelNameRole:
        return device.model;
    case BatteryRole:
        return device.battery;
    case ChannelModesRole:
        return describeModes(device);
    case PreferredChannelsRole:
        return device.preferredChannelCount;
    case PreferredModeRole:
        return int(device.channelModes.keys().indexOf(device.preferredChannelCount));
    case FavouriteRole:
        return !m_favourite.isEmpty() && device.name == m_favourite;
    case KindRole:
        return kindOf(device.name);
    case CurrentRole:
        return !m_current.isEmpty() && device.name == m_current;
    default:
        return {};
    }
}

QHash<int, QByteArray> DeviceListModel::roleNames() const
{
    return { { NameRole, "name" },           { SerialNumberRole, "serialNumber" },
             { ModelNameRole, "modelName" },         { BatteryRole, "battery" },
             { ChannelModesRole, "channelModes" }, { PreferredChannelsRole, "preferredChannels" },
             { PreferredModeRole, "preferredMode" },
             { FavouriteRole, "favourite" }, { KindRole, "kind" },
             { CurrentRole, "current" } };
}

void DeviceListModel::setDevices(const QList<DeviceInfo>& devices)
{
    beginResetModel();
    m_devices = devices;
    endResetModel();
    Q_EMIT countChanged();
}

void DeviceListModel::addOrUpdate(const DeviceInfo& device)
{
    const int row = rowOf(device.name);
    if (row >= 0) {
        m_devices[row] = device;
        Q_EMIT dataChanged(index(row), index(row));
        return;
    }
    beginInsertRows({}, int(m_devices.size()), int(m_devices.size()));
    m_devices.append(device);
    endInsertRows();
    Q_EMIT countChanged();
}

void DeviceListModel::setFavourite(const QString& name)
{
    const int before = rowOf(m_favourite);
    m_favourite = name;
    changed(before, { FavouriteRole });
    changed(rowOf(name), { FavouriteRole });
}

void DeviceListModel::setCurrent(const QString& name)
{
    const int before = rowOf(m_current);
    m_current = name;
    changed(before, { CurrentRole });
    changed(rowOf(name), { CurrentRole });
}

void DeviceListModel::setSimulatedName(const QString& name)
{
    m_simulatedName = name;
    changed(rowOf(name), { KindRole });
}

void DeviceListModel::setBattery(const QString& name, int battery)
{
    const int row = rowOf(name);
    if (row < 0)
        return;
    m_devices[row].battery = battery;
    changed(row, { BatteryRole });
}

DeviceInfo DeviceListModel::deviceAt(int row) const
{
    return row >= 0 && row < m_devices.size() ? m_devices.at(row) : DeviceInfo();
}

int DeviceListModel::rowOf(const QString& name) const
{
    if (name.isEmpty())
        return -1;
    for (int row = 0; row < m_devices.size(); ++row) {
        if (m_devices.at(row).name == name)
            return row;
    }
    return -1;
}

QString DeviceListModel::kindOf(const QString& name) const
{
    if (name == GeneratorName)
        return QStringLiteral("generator");
    if (name == PlayerName)
        return QStringLiteral("player");
    if (!m_simulatedName.isEmpty() && name == m_simulatedName)
        return QStringLiteral("simulated");
    return QStringLiteral("headset");
}

void DeviceListModel::changed(int row, const QList<int>& roles)
{
    if (row >= 0)
        Q_EMIT dataChanged(index(row), index(row), roles);
}
