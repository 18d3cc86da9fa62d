#include "settings/KxSettings.h"

#include "services/GlobalConsole.h"
#include "settings/MetaCapabilities.h"
#include "settings/MetaDescription.h"
#include "settings/MetaValueConverter.h"
#include "settings/SettingsFileStore.h"

#include <QDir>
#include <QJsonValue>
#include <QStandardPaths>

QString KxSettings::s_storageFolder;

namespace {

QJsonValue jsonValueOf(const MetaDescription& description)
{
    const QVariant value = description.getValue();
    switch (MetaValueConverter::kindOf(description.getProperty())) {
    case MetaValueConverter::Kind::Bool: return value.toBool();
    case MetaValueConverter::Kind::Integer: return value.toLongLong();
    // The shortest float text keeps 0.1f as 0.1 in the file, not 0.10000000149011612.
    case MetaValueConverter::Kind::Float: return MetaValueConverter::floatText(value.toFloat()).toDouble();
    case MetaValueConverter::Kind::Double: return value.toDouble();
    default: return description.getValueText();
    }
}

bool textOfJson(const QJsonValue& value, QString& text)
{
    switch (value.type()) {
    case QJsonValue::Bool: text = value.toBool() ? QStringLiteral("true") : QStringLiteral("false"); return true;
    case QJsonValue::Double: text = MetaValueConverter::numberText(value.toDouble()); return true;
    case QJsonValue::String: text = value.toString(); return true;
    default: return false;
    }
}

QString shownJson(const QJsonValue& value)
{
    QString text;
    if (textOfJson(value, text))
        return text;
    return value.isArray() ? QStringLiteral("[...]") : value.isObject() ? QStringLiteral("{...}") : QStringLiteral("null");
}

} // namespace

KxSettings::KxSettings(QObject* parent)
    : QObject(parent)
{
}

KxSettings::~KxSettings() = default;

void KxSettings::initialize()
{
    if (m_initialized)
        return;
    describeProperties();
    load();
    m_initialized = true;
}

MetaDescription* KxSettings::getPropertyByName(const QString& name) const
{
    for (MetaDescription* description : m_descriptions) {
        if (description->getName() == name)
            return description;
    }
    for (MetaDescription* description : m_descriptions) {
        if (description->getName().compare(name, Qt::CaseInsensitive) == 0)
            return description;
    }
    return nullptr;
}

QVariantMap KxSettings::getPropertyCapabilities(const QString& name) const
{
    const MetaDescription* description = getPropertyByName(name);
    return description ? MetaCapabilities::build(*description) : QVariantMap();
}

QList<QVariantMap> KxSettings::getAllCapabilities() const
{
    QList<QVariantMap> list;
    for (const MetaDescription* description : m_descriptions)
        list.append(MetaCapabilities::build(*description));
    return list;
}

QJsonArray KxSettings::getAllCapabilitiesJson(bool onlyVisible) const
{
    QJsonArray array;
    for (const MetaDescription* description : m_descriptions) {
        if (onlyVisible && !description->isVisibleNow())
            continue;
        array.append(QJsonObject::fromVariantMap(MetaCapabilities::build(*description)));
    }
    return array;
}

bool KxSettings::setTextValue(const QString& name, const QString& text)
{
    MetaDescription* description = getPropertyByName(name);
    if (!description) {
        GlobalConsole::writeLine(QStringLiteral("Setting %1.%2: unknown setting, value \"%3\" refused")
                                     .arg(getSettingsName(), name, text));
        return false;
    }
    return description->setTextValue(text);
}

QString KxSettings::getTextValue(const QString& name) const
{
    const MetaDescription* description = getPropertyByName(name);
    return description ? description->getValueText() : QString();
}

void KxSettings::restoreDefaults()
{
    for (MetaDescription* description : m_descriptions)
        description->setDefault();
}

QString KxSettings::getSettingsName() const
{
    return QString::fromLatin1(metaObject()->className()).replace(QStringLiteral("::"), QStringLiteral("_"));
}

QString KxSettings::getFilePath() const
{
    return QDir(storageFolder()).filePath(getSettingsName() + QStringLiteral(".json"));
}

bool KxSettings::load()
{
    m_loading = true;
    restoreDefaults();
    m_unknownEntries = QJsonObject();

    const SettingsFileStore store(getFilePath());
    QJsonObject object;
    QString problem;
    const SettingsFileStore::ReadResult result = store.read(object, problem);
    bool corrected = false;
    if (result == SettingsFileStore::ReadResult::Damaged) {
        QString asideProblem;
        const bool movedAside = store.moveAside(asideProblem);
        GlobalConsole::writeLine(QStringLiteral("Settings file %1 is damaged (%2); %3, defaults used")
                                     .arg(store.getPath(), problem,
                                          movedAside ? QStringLiteral("kept aside as %1").arg(store.getAsidePath())
                                                     : asideProblem));
        corrected = true;
    } else if (result == SettingsFileStore::ReadResult::Loaded) {
        corrected = !applyFileEntries(object);
    }
    m_loading = false;
    if (corrected)
        save();
    return result != SettingsFileStore::ReadResult::Damaged;
}

bool KxSettings::save()
{
    const SettingsFileStore store(getFilePath());
    QString problem;
    if (!store.write(toJson(), problem)) {
        GlobalConsole::writeLine(QStringLiteral("Settings file %1 %2").arg(store.getPath(), problem));
        return false;
    }
    return true;
}

void KxSettings::setStorageFolder(const QString& folder)
{
    s_storageFolder = folder;
}

QString KxSettings::storageFolder()
{
    if (!s_storageFolder.isEmpty())
        return s_storageFolder;
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
}

void KxSettings::describeProperties()
{
    const QMetaObject* meta = metaObject();
    for (int index = QObject::staticMetaObject.propertyCount(); index < meta->propertyCount(); ++index) {
        auto* description = new MetaDescription(this);
        if (!description->set(index, this)) {
            delete description;
            continue;
        }
        connect(description, &MetaDescription::valueChanged, this,
                [this, description](const QVariant&) { onValueChanged(description); });
        m_descriptions.append(description);
    }
}

void KxSettings::onValueChanged(MetaDescription* description)
{
    if (!m_loading && m_initialized && m_autoSave)
        save();
    Q_EMIT settingChanged(description->getName());
}

// Applies the file's values; false when one of them had to be refused.
bool KxSettings::applyFileEntries(const QJsonObject& object)
{
    m_unknownEntries = object;
    bool allAccepted = true;
    for (MetaDescription* description : m_descriptions) {
        const QString name = description->getName();
        if (!object.contains(name))
            continue;
        m_unknownEntries.remove(name);
        const QJsonValue entry = object.value(name);
        QString text;
        QVariant value;
        QString reason = QStringLiteral("wrong type");
        if (textOfJson(entry, text) && description->validateText(text, &value, &reason) && description->setValue(value))
            continue;
        allAccepted = false;
        GlobalConsole::writeLine(QStringLiteral("Settings file %1: value \"%2\" of %3 refused (%4); default \"%5\" used")
                                     .arg(getFilePath(), shownJson(entry), name,
                                          reason, description->getDefaultValueText()));
    }
    return allAccepted;
}

QJsonObject KxSettings::toJson() const
{
    QJsonObject object = m_unknownEntries;
    for (const MetaDescription* description : m_descriptions)
        object.insert(description->getName(), jsonValueOf(*description));
    return object;
}
