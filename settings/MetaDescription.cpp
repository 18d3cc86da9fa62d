#include "settings/MetaDescription.h"

#include "services/GlobalConsole.h"
#include "settings/MetaValueConverter.h"

#include <QDateTime>
#include <QRegularExpression>

#include <cmath>

namespace {

QString className(const QObject* object)
{
    return object ? QString::fromLatin1(object->metaObject()->className()) : QStringLiteral("(none)");
}

// Number entries may be written like the defaults, with a trailing "f".
bool parseNumberEntry(QString text, double& value)
{
    text = text.trimmed();
    if (text.endsWith(QLatin1Char('f'), Qt::CaseInsensitive))
        text.chop(1);
    bool ok = false;
    value = text.toDouble(&ok);
    return ok && std::isfinite(value);
}

bool resolveFrameworkEnum(const QString& key, int& value)
{
    const QMetaObject& qt = Qt::staticMetaObject;
    const QByteArray name = key.toLatin1();
    for (int i = 0; i < qt.enumeratorCount(); ++i) {
        bool ok = false;
        const int found = qt.enumerator(i).keyToValue(name.constData(), &ok);
        if (ok) {
            value = found;
            return true;
        }
    }
    return false;
}

} // namespace

MetaDescription::MetaDescription(QObject* parent)
    : AbstractMetaDescription(parent)
{
}

MetaDescription::~MetaDescription() = default;

bool MetaDescription::set(int propertyIndex, QObject* object)
{
    clear();
    if (!object || propertyIndex < 0 || propertyIndex >= object->metaObject()->propertyCount()) {
        GlobalConsole::writeLine(QStringLiteral("Settings description: no property %1 in %2")
                                     .arg(propertyIndex)
                                     .arg(className(object)));
        return false;
    }
    m_object = object;
    m_propertyIndex = propertyIndex;
    m_property = object->metaObject()->property(propertyIndex);
    m_name = QString::fromLatin1(m_property.name());
    m_typeId = m_property.metaType().id();
    m_typeName = m_property.isEnumType() ? QStringLiteral("Enum") : QString::fromLatin1(m_property.typeName());

    bool exists = false;
    m_editable = entry("Editable") == QLatin1String("true");
    m_visible = !hasEntry("NotVisible");
    m_displayName = entry("DisplayName", &exists);
    if (!exists)
        m_displayName = m_name;

    readDefault();
    readVisibility();
    readRange();
    m_prefix = entry("Prefix");
    m_suffix = entry("Suffix");
    m_step = entry("Step");
    m_description = entry("Description");
    m_placeholder = entry("Placeholder");
    const QString precision = entry("Precision", &exists);
    if (exists) {
        bool ok = false;
        m_precision = precision.trimmed().toInt(&ok);
        if (!ok || m_precision < 0) {
            m_precision = -1;
            GlobalConsole::writeLine(QStringLiteral("Settings description %1.%2: precision \"%3\" is not a count")
                                         .arg(className(object), m_name, precision));
        }
    }
    m_suggestions = entry("Suggestions");
    m_specialType = entry("SpecialType");
    m_category = entry("Category");
    m_priority = entry("Priority").trimmed().toInt();
    m_noDefault = hasEntry("NoDefault");
    m_readOnly = hasEntry("ReadOnly");
    m_icon = entry("Icon");

    connectNotify();
    return true;
}

QVariant MetaDescription::getValue() const
{
    if (!m_object)
        return QVariant();
    return m_property.read(m_object);
}

bool MetaDescription::setValue(const QVariant& value)
{
    QVariant converted;
    QString reason;
    const QString shown = value.toString();
    if (!m_object) {
        refuse(shown, QStringLiteral("no object"));
        return false;
    }
    if (!MetaValueConverter::fromVariant(value, m_property, converted, reason) || !checkRange(converted, reason)) {
        refuse(shown, reason);
        return false;
    }
    return write(converted, shown);
}

bool MetaDescription::setTextValue(QString text)
{
    QVariant converted;
    QString reason;
    if (!validateText(text, &converted, &reason)) {
        refuse(text, reason);
        return false;
    }
    return write(converted, text);
}

bool MetaDescription::setDefault()
{
    if (!hasDefault())
        return false;
    return setValue(m_defaultValue);
}

bool MetaDescription::validateText(const QString& text, QVariant* value, QString* reason) const
{
    QVariant converted;
    QString why;
    bool ok = false;
    if (!m_object)
        why = QStringLiteral("no object");
    else
        ok = MetaValueConverter::fromText(text, m_property, converted, why) && checkRange(converted, why);
    if (value && ok)
        *value = converted;
    if (reason)
        *reason = why;
    return ok;
}

bool MetaDescription::isEnumType() const
{
    return m_property.isValid() && m_property.isEnumType();
}

QMetaEnum MetaDescription::enumerator() const
{
    return m_property.enumerator();
}

bool MetaDescription::isVisibleNow() const
{
    return m_visible && conditionsHold();
}

bool MetaDescription::conditionsHold() const
{
    if (!m_object)
        return true;
    const QMetaObject* meta = m_object->metaObject();
    for (const VisibilityCondition& condition : m_conditions) {
        const int index = meta->indexOfProperty(condition.getPropertyName().toLatin1().constData());
        if (index < 0)
            continue;
        const QMetaProperty other = meta->property(index);
        if (!condition.holds(MetaValueConverter::toText(other.read(m_object), other)))
            return false;
    }
    return true;
}

QString MetaDescription::getValueText() const
{
    return m_object ? MetaValueConverter::toText(getValue(), m_property) : QString();
}

QString MetaDescription::getDefaultValueText() const
{
    return hasDefault() ? MetaValueConverter::toText(m_defaultValue, m_property) : QString();
}

bool MetaDescription::parsePointOrSize(QString text, double& first, double& second)
{
    return MetaValueConverter::parsePointOrSize(text, first, second);
}

void MetaDescription::valueChangedSlot()
{
    Q_EMIT valueChanged(getValue());
}

void MetaDescription::clear()
{
    if (m_notifyConnection)
        QObject::disconnect(m_notifyConnection);
    m_notifyConnection = QMetaObject::Connection();
    m_propertyIndex = -1;
    m_object = nullptr;
    m_property = QMetaProperty();
    m_name.clear();
    m_typeName.clear();
    m_typeId = 0;
    m_displayName.clear();
    m_defaultText.clear();
    m_defaultValue = QVariant();
    m_editable = false;
    m_visible = true;
    m_visibleBound.clear();
    m_conditions.clear();
    m_minimum.clear();
    m_maximum.clear();
    m_step.clear();
    m_hasMinimum = false;
    m_hasMaximum = false;
    m_prefix.clear();
    m_suffix.clear();
    m_description.clear();
    m_placeholder.clear();
    m_precision = -1;
    m_suggestions.clear();
    m_specialType.clear();
    m_category.clear();
    m_priority = 0;
    m_noDefault = false;
    m_readOnly = false;
    m_icon.clear();
}

QString MetaDescription::entry(const char* keyWord, bool* exists) const
{
    const QByteArray key = m_name.toLatin1() + keyWord;
    const QMetaObject* meta = m_object ? m_object->metaObject() : nullptr;
    const int index = meta ? meta->indexOfClassInfo(key.constData()) : -1;
    if (exists)
        *exists = index >= 0;
    return index >= 0 ? QString::fromUtf8(meta->classInfo(index).value()) : QString();
}

bool MetaDescription::hasEntry(const char* keyWord) const
{
    bool exists = false;
    entry(keyWord, &exists);
    return exists;
}

void MetaDescription::readDefault()
{
    bool exists = false;
    m_defaultText = entry("Default", &exists);
    if (!exists)
        return;
    QString reason;
    m_defaultValue = parseDefault(m_defaultText, reason);
    if (!m_defaultValue.isValid())
        GlobalConsole::writeLine(QStringLiteral("Settings description %1.%2: default \"%3\" unusable: %4")
                                     .arg(className(m_object), m_name, m_defaultText, reason));
}

QVariant MetaDescription::parseDefault(const QString& text, QString& reason) const
{
    static const QRegularExpression framework(QStringLiteral(R"(^Qt::(\w+)$)"));
    static const QRegularExpression colour(QStringLiteral(R"(^(#[a-fA-F0-9]+)$)"));
    static const QRegularExpression floating(QStringLiteral(R"(^[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?f$)"));

    const MetaValueConverter::Kind kind = MetaValueConverter::kindOf(m_property);
    QString trimmed = text.trimmed();
    QVariant value;
    if (trimmed.size() >= 2 && trimmed.startsWith(QLatin1Char('"')) && trimmed.endsWith(QLatin1Char('"')))
        trimmed = trimmed.mid(1, trimmed.size() - 2);
    else if (kind == MetaValueConverter::Kind::String)
        trimmed = text;
    if (kind == MetaValueConverter::Kind::String)
        return trimmed;

    if (trimmed == QLatin1String("QDateTime::currentDateTime")
        || trimmed == QLatin1String("QDateTime::currentDateTime()")) {
        if (MetaValueConverter::fromVariant(QDateTime::currentDateTime(), m_property, value, reason))
            return value;
        return QVariant();
    }
    const QRegularExpressionMatch frameworkMatch = framework.match(trimmed);
    if (m_property.isEnumType()) {
        // Written with its full scope; the last part names the enumerator.
        if (MetaValueConverter::fromText(trimmed.section(QStringLiteral("::"), -1), m_property, value, reason))
            return value;
        if (!frameworkMatch.hasMatch())
            return QVariant();
    }
    if (frameworkMatch.hasMatch()) {
        int number = 0;
        if (!resolveFrameworkEnum(frameworkMatch.captured(1), number)) {
            reason = QStringLiteral("no framework enumeration value %1").arg(frameworkMatch.captured(1));
            return QVariant();
        }
        if (MetaValueConverter::fromVariant(number, m_property, value, reason))
            return value;
        return QVariant();
    }
    const QRegularExpressionMatch colourMatch = colour.match(trimmed);
    if (colourMatch.hasMatch())
        trimmed = colourMatch.captured(1);
    else if (floating.match(trimmed).hasMatch())
        trimmed.chop(1);
    if (MetaValueConverter::fromText(trimmed, m_property, value, reason))
        return value;
    return QVariant();
}

void MetaDescription::readVisibility()
{
    bool exists = false;
    m_visibleBound = entry("VisibleBound", &exists);
    if (!exists)
        m_visibleBound = entry("VisibleBinded");
    QString problem;
    m_conditions = VisibilityCondition::parseList(m_visibleBound, &problem);
    if (!problem.isEmpty())
        GlobalConsole::writeLine(QStringLiteral("Settings description %1.%2: %3 ignored")
                                     .arg(className(m_object), m_name, problem));
}

void MetaDescription::readRange()
{
    bool exists = false;
    m_minimum = entry("Minimum", &exists);
    if (exists) {
        m_hasMinimum = parseNumberEntry(m_minimum, m_minimumValue);
        if (!m_hasMinimum)
            GlobalConsole::writeLine(QStringLiteral("Settings description %1.%2: minimum \"%3\" is not a number")
                                         .arg(className(m_object), m_name, m_minimum));
    }
    m_maximum = entry("Maximum", &exists);
    if (exists) {
        m_hasMaximum = parseNumberEntry(m_maximum, m_maximumValue);
        if (!m_hasMaximum)
            GlobalConsole::writeLine(QStringLiteral("Settings description %1.%2: maximum \"%3\" is not a number")
                                         .arg(className(m_object), m_name, m_maximum));
    }
}

void MetaDescription::connectNotify()
{
    if (!m_property.hasNotifySignal())
        return;
    const QMetaMethod slot = staticMetaObject.method(staticMetaObject.indexOfSlot("valueChangedSlot()"));
    m_notifyConnection = QObject::connect(m_object, m_property.notifySignal(), this, slot);
}

bool MetaDescription::checkRange(const QVariant& value, QString& reason) const
{
    const MetaValueConverter::Kind kind = MetaValueConverter::kindOf(m_property);
    if (!MetaValueConverter::isNumeric(kind))
        return true;
    const double number = value.toDouble();
    // A float setting is compared in float, so a limit like 0.1 admits the value 0.1f.
    const bool isFloat = kind == MetaValueConverter::Kind::Float;
    auto below = [&](double limit) { return isFloat ? float(number) < float(limit) : number < limit; };
    auto above = [&](double limit) { return isFloat ? float(number) > float(limit) : number > limit; };
    if (m_hasMinimum && below(m_minimumValue)) {
        reason = QStringLiteral("below the minimum %1").arg(MetaValueConverter::numberText(m_minimumValue));
        return false;
    }
    if (m_hasMaximum && above(m_maximumValue)) {
        reason = QStringLiteral("above the maximum %1").arg(MetaValueConverter::numberText(m_maximumValue));
        return false;
    }
    return true;
}

bool MetaDescription::write(const QVariant& value, const QString& shownValue)
{
    if (!m_property.isWritable()) {
        refuse(shownValue, QStringLiteral("the property cannot be written"));
        return false;
    }
    if (!m_property.write(m_object, value)) {
        refuse(shownValue, QStringLiteral("the object did not accept it"));
        return false;
    }
    return true;
}

void MetaDescription::refuse(const QString& shownValue, const QString& reason) const
{
    GlobalConsole::writeLine(QStringLiteral("Setting %1.%2: value \"%3\" refused: %4")
                                 .arg(className(m_object), m_name, shownValue, reason));
}
