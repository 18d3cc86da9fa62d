#include "app/ui/SettingsListModel.h"

#include "settings/KxSettings.h"
#include "settings/MetaDescription.h"

#include <algorithm>
#include <cmath>

namespace {
bool isTrue(const QVariant& text)
{
    return text.toString() == QLatin1String("true");
}
}

SettingsListModel::SettingsListModel(const QList<KxSettings*>& owners, QObject* parent)
    : QAbstractListModel(parent)
{
    for (KxSettings* owner : owners) {
        const QList<QVariantMap> capabilities = owner->getAllCapabilities();
        for (const QVariantMap& property : capabilities)
            m_rows.append({ owner, owner->getPropertyByName(property.value(QStringLiteral("name")).toString()), property, {} });
        // Any change can move another property's visibility or value: refresh them all.
        connect(owner, &KxSettings::settingChanged, this, &SettingsListModel::refresh);
    }
    // Categories carry their order as a prefix ("1.Common"); priority orders within one.
    std::stable_sort(m_rows.begin(), m_rows.end(), [](const Row& a, const Row& b) {
        const QString ca = a.capabilities.value(QStringLiteral("category")).toString();
        const QString cb = b.capabilities.value(QStringLiteral("category")).toString();
        if (ca != cb)
            return ca < cb;
        return a.capabilities.value(QStringLiteral("priority")).toInt() > b.capabilities.value(QStringLiteral("priority")).toInt();
    });
}

int SettingsListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QString SettingsListModel::editorOf(const QVariantMap& capabilities)
{
    const QString type = capabilities.value(QStringLiteral("type")).toString();
    if (isTrue(capabilities.value(QStringLiteral("readOnly"))))
        return QStringLiteral("readonly");
    if (capabilities.value(QStringLiteral("specialType")).toString().startsWith(QLatin1String("PickFile")))
        return QStringLiteral("file");
    if (capabilities.value(QStringLiteral("specialType")).toString().startsWith(QLatin1String("PickFolder")))
        return QStringLiteral("folder");
    if (type == QLatin1String("bool"))
        return QStringLiteral("bool");
    if (!capabilities.value(QStringLiteral("enums")).toStringList().isEmpty())
        return QStringLiteral("enum");
    if (type == QLatin1String("int") || type == QLatin1String("float") || type == QLatin1String("double"))
        return QStringLiteral("number");
    if (type == QLatin1String("QColor"))
        return QStringLiteral("color");
    return QStringLiteral("text");
}

QVariant SettingsListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row& row = m_rows.at(index.row());
    const QVariantMap& c = row.capabilities;
    const auto text = [&c](const char* key) { return c.value(QLatin1String(key)).toString(); };
    switch (role) {
    case NameRole: return text("name");
    case DisplayNameRole: return text("nameTranslated").isEmpty() ? text("name") : text("nameTranslated");
    case DescriptionRole: return text("description");
    case SectionRole: return text("categoryTranslated");
    case EditorRole: return editorOf(c);
    case ValueRole: return row.property ? row.property->getValueText() : text("value");
    case DefaultRole: return text("default");
    // As declared ("100000"), not as the capability object's number text ("1e+05").
    case MinimumRole: return row.property ? row.property->getMinimum() : text("min");
    case MaximumRole: return row.property ? row.property->getMaximum() : text("max");
    case StepRole: return text("step");
    case DecimalsRole: return text("precision").isEmpty() ? (text("type") == QLatin1String("int") ? 0 : 2) : text("precision").toInt();
    case PrefixRole: return text("prefixTranslated");
    case SuffixRole: return text("suffixTranslated");
    case ChoicesRole: return c.value(QStringLiteral("enumsTranslations"));
    case ChoiceValuesRole: return c.value(QStringLiteral("enums"));
    case PlaceholderRole: return text("placeholder");
    case SuggestionsRole: return text("suggestions").isEmpty() ? QStringList() : text("suggestions").split(QLatin1Char(','));
    case FileFilterRole: return text("pickOption");
    case ShownRole: return row.property ? row.property->isVisibleNow() : !isTrue(c.value(QStringLiteral("hidden")));
    case CanRestoreRole: return row.property && row.property->hasDefault() && !isTrue(c.value(QStringLiteral("hideDefault")))
                               && !isTrue(c.value(QStringLiteral("readOnly")));
    case ErrorRole: return row.error;
    default: return {};
    }
}

QHash<int, QByteArray> SettingsListModel::roleNames() const
{
    return { { NameRole, "name" },           { DisplayNameRole, "displayName" }, { DescriptionRole, "description" },
             { SectionRole, "section" },     { EditorRole, "editor" },           { ValueRole, "value" },
             { DefaultRole, "defaultValue" }, { MinimumRole, "minimum" },        { MaximumRole, "maximum" },
             { StepRole, "step" },           { DecimalsRole, "decimals" },       { PrefixRole, "prefix" },
             { SuffixRole, "suffix" },       { ChoicesRole, "choices" },         { ChoiceValuesRole, "choiceValues" },
             { PlaceholderRole, "placeholder" }, { SuggestionsRole, "suggestions" }, { FileFilterRole, "fileFilter" },
             { ShownRole, "shown" },         { CanRestoreRole, "canRestore" },   { ErrorRole, "error" } };
}

bool SettingsListModel::setValue(int row, const QString& text)
{
    if (row < 0 || row >= m_rows.size() || !m_rows[row].property)
        return false;
    QString reason;
    if (!m_rows[row].property->validateText(text, nullptr, &reason)) {
        setError(row, reason.isEmpty() ? QStringLiteral("Not a value this setting takes") : reason);
        return false;
    }
    const QString name = m_rows[row].property->getName();
    if (!m_rows[row].owner->setTextValue(name, text)) {
        setError(row, QStringLiteral("Not a value this setting takes"));
        return false;
    }
    setError(row, QString());
    return true;
}

bool SettingsListModel::restoreDefault(int row)
{
    if (row < 0 || row >= m_rows.size() || !data(index(row), CanRestoreRole).toBool())
        return false;
    return setValue(row, m_rows[row].property->getDefaultValueText());
}

bool SettingsListModel::stepValue(int row, int steps)
{
    if (row < 0 || row >= m_rows.size() || data(index(row), EditorRole).toString() != QLatin1String("number"))
        return false;
    bool numeric = false;
    const double value = data(index(row), ValueRole).toString().toDouble(&numeric);
    const double step = data(index(row), StepRole).toString().toDouble();
    if (!numeric)
        return false;
    const int decimals = data(index(row), DecimalsRole).toInt();
    const double next = value + steps * (step > 0 ? step : std::pow(10.0, -decimals));
    return setValue(row, QString::number(next, 'f', decimals));
}

int SettingsListModel::rowOf(const QString& name) const
{
    for (int row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].property && m_rows[row].property->getName() == name)
            return row;
    }
    return -1;
}

void SettingsListModel::refresh()
{
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), { ValueRole, ShownRole });
}

void SettingsListModel::setError(int row, const QString& error)
{
    if (m_rows[row].error == error)
        return;
    m_rows[row].error = error;
    Q_EMIT dataChanged(index(row), index(row), { ErrorRole });
}
