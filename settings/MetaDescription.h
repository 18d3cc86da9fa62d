#pragma once

#include "settings/AbstractMetaDescription.h"
#include "settings/VisibilityCondition.h"

#include <QList>
#include <QMetaEnum>
#include <QMetaObject>
#include <QMetaProperty>
#include <QPointer>
#include <QString>

// Describes one property of a settings object from the class-information entries declared
// beside it ("<Property><KeyWord>", e.g. "GeneratorAmplitudeMaximum"), and reads and writes
// its value with the declared limits. Values that do not convert or lie outside
// Minimum/Maximum are refused (false plus one console line), never clamped.
class MetaDescription : public AbstractMetaDescription
{
    Q_OBJECT
public:
    explicit MetaDescription(QObject* parent = nullptr);
    ~MetaDescription() override;

    // Reads every entry of the property at propertyIndex of object's meta-object and follows
    // the property's notify signal. False (with a console line) for a bad index or object.
    bool set(int propertyIndex, QObject* object);

    QVariant getValue() const override;
    bool setValue(const QVariant& value) override;
    bool setTextValue(QString text);
    // Applies the declared default; false when there is none (or it is refused).
    bool setDefault();
    // The checks of setTextValue without writing or reporting: the converted value or a reason.
    bool validateText(const QString& text, QVariant* value = nullptr, QString* reason = nullptr) const;

    bool isEnumType() const;
    QMetaEnum enumerator() const;

    // Shown now: no NotVisible entry and every visibility condition holds against the current
    // values of the same object's properties. A condition naming an unknown property is
    // ignored, so a misspelt bound never hides a setting for good.
    bool isVisibleNow() const;
    bool conditionsHold() const;

    // Text forms as setTextValue reads them (enum key, "true"/"false", ISO date, "x,y").
    QString getValueText() const;
    QString getDefaultValueText() const;

    static bool parsePointOrSize(QString text, double& first, double& second);

    int getPropertyIndex() const { return m_propertyIndex; }
    QObject* getObject() const { return m_object; }
    QMetaProperty getProperty() const { return m_property; }
    QString getName() const { return m_name; }
    // "Enum" for enumeration properties, else the property's C++ type name.
    QString getTypeName() const { return m_typeName; }
    int getTypeId() const { return m_typeId; }
    QString getDisplayName() const { return m_displayName; }
    QString getDefaultText() const { return m_defaultText; }
    QVariant getDefaultValue() const { return m_defaultValue; }
    bool hasDefault() const { return m_defaultValue.isValid(); }
    bool isEditable() const { return m_editable; }
    bool isVisible() const { return m_visible; }
    QString getVisibleBound() const { return m_visibleBound; }
    QList<VisibilityCondition> getVisibilityConditions() const { return m_conditions; }
    QString getMinimum() const { return m_minimum; }
    QString getMaximum() const { return m_maximum; }
    QString getStep() const { return m_step; }
    QString getPrefix() const { return m_prefix; }
    QString getSuffix() const { return m_suffix; }
    QString getDescription() const { return m_description; }
    QString getPlaceholder() const { return m_placeholder; }
    // -1 when not declared.
    int getPrecision() const { return m_precision; }
    QString getSuggestions() const { return m_suggestions; }
    // Whole entry ("PickFile:*.edf *.bdf"), its kind ("PickFile") and option ("*.edf *.bdf").
    QString getSpecialType() const { return m_specialType; }
    QString getSpecialKind() const { return m_specialType.section(QLatin1Char(':'), 0, 0); }
    QString getSpecialOption() const { return m_specialType.section(QLatin1Char(':'), 1); }
    QString getCategory() const { return m_category; }
    int getPriority() const { return m_priority; }
    bool isNoDefault() const { return m_noDefault; }
    bool isReadOnly() const { return m_readOnly; }
    QString getIcon() const { return m_icon; }

public Q_SLOTS:
    void valueChangedSlot();

private:
    void clear();
    QString entry(const char* keyWord, bool* exists = nullptr) const;
    bool hasEntry(const char* keyWord) const;
    void readDefault();
    QVariant parseDefault(const QString& text, QString& reason) const;
    void readVisibility();
    void readRange();
    void connectNotify();
    bool checkRange(const QVariant& value, QString& reason) const;
    bool write(const QVariant& value, const QString& shownValue);
    void refuse(const QString& shownValue, const QString& reason) const;

    int m_propertyIndex = -1;
    QPointer<QObject> m_object;
    QMetaProperty m_property;
    QMetaObject::Connection m_notifyConnection;

    QString m_name;
    QString m_typeName;
    int m_typeId = 0;
    QString m_displayName;
    QString m_defaultText;
    QVariant m_defaultValue;
    bool m_editable = false;
    bool m_visible = true;
    QString m_visibleBound;
    QList<VisibilityCondition> m_conditions;
    QString m_minimum;
    QString m_maximum;
    QString m_step;
    bool m_hasMinimum = false;
    bool m_hasMaximum = false;
    double m_minimumValue = 0.0;
    double m_maximumValue = 0.0;
    QString m_prefix;
    QString m_suffix;
    QString m_description;
    QString m_placeholder;
    int m_precision = -1;
    QString m_suggestions;
    QString m_specialType;
    QString m_category;
    int m_priority = 0;
    bool m_noDefault = false;
    bool m_readOnly = false;
    QString m_icon;
};
