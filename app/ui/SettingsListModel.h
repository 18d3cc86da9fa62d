#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QVariantMap>

class KxSettings;
class MetaDescription;

// Every property of the settings classes as the settings screen shows it, generated from their
// metadata: grouped by category (in the order of the categories' prefixes), then by priority,
// with one editor kind per type. Values go through the settings objects, so they act on the
// engine and are saved exactly as an API client's setSettings; a value the setting refuses is
// refused with the reason, never clamped. A new property needs no change here or in QML.
class SettingsListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount CONSTANT)
public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        DisplayNameRole,
        DescriptionRole,
        SectionRole,     // the category's display name
        EditorRole,      // "number", "bool", "enum", "text", "color", "file", "folder", "readonly"
        ValueRole,       // as text
        DefaultRole,
        MinimumRole,
        MaximumRole,
        StepRole,
        DecimalsRole,
        PrefixRole,
        SuffixRole,
        ChoicesRole,     // enumeration: the names shown
        ChoiceValuesRole, // enumeration: the values set
        PlaceholderRole,
        SuggestionsRole,
        FileFilterRole,
        ShownRole,       // its visibility conditions hold now
        CanRestoreRole,  // has a default to go back to, and it is not hidden
        ErrorRole        // why the last value given was refused
    };

    explicit SettingsListModel(const QList<KxSettings*>& owners, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // False, with the reason in the row's error, when the setting refuses the text.
    Q_INVOKABLE bool setValue(int row, const QString& text);
    Q_INVOKABLE bool restoreDefault(int row);
    // A number moved by whole steps (its own step, else its last shown digit); refused like any
    // other value when that leaves its range.
    Q_INVOKABLE bool stepValue(int row, int steps);
    Q_INVOKABLE int rowOf(const QString& name) const;

private:
    struct Row
    {
        KxSettings* owner = nullptr;
        MetaDescription* property = nullptr;
        QVariantMap capabilities;
        QString error;
    };

    static QString editorOf(const QVariantMap& capabilities);
    void refresh();
    void setError(int row, const QString& error);

    QList<Row> m_rows;
};
