#include "settings/MetaCapabilities.h"

#include "settings/MetaDescription.h"
#include "settings/MetaValueConverter.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace {

const QLatin1String NoTranslationMarker("!-");

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString translatedKey(const char* context, const QString& key)
{
    const QByteArray source = key.toUtf8();
    const QString own = QCoreApplication::translate(context, source.constData());
    return own != key ? own : QCoreApplication::translate("Generic", source.constData());
}

QStringList pickExtensions(const QString& option)
{
    QStringList extensions;
    static const QRegularExpression separators(QStringLiteral("[\\s;,]+"));
    for (const QString& pattern : option.split(separators, Qt::SkipEmptyParts)) {
        if (pattern.startsWith(QLatin1String("*.")) && pattern.size() > 2)
            extensions.append(pattern.mid(2));
    }
    return extensions;
}

} // namespace

QVariantMap MetaCapabilities::build(const MetaDescription& description)
{
    QVariantMap map;
    map.insert(QStringLiteral("name"), description.getName());
    map.insert(QStringLiteral("nameTranslated"), translated(description.getDisplayName()));
    map.insert(QStringLiteral("description"), translated(description.getDescription()));
    map.insert(QStringLiteral("type"), description.getTypeName());
    map.insert(QStringLiteral("value"), description.getValueText());
    map.insert(QStringLiteral("default"), description.getDefaultValueText());
    map.insert(QStringLiteral("hideDefault"), flag(description.isNoDefault() || !description.hasDefault()));
    map.insert(QStringLiteral("readOnly"), flag(description.isReadOnly() || !description.isEditable()
                                                || !description.getProperty().isWritable()));
    map.insert(QStringLiteral("hidden"), flag(!description.isVisibleNow()));
    map.insert(QStringLiteral("min"), numberEntryText(description.getMinimum()));
    map.insert(QStringLiteral("max"), numberEntryText(description.getMaximum()));
    map.insert(QStringLiteral("step"), numberEntryText(description.getStep()));
    map.insert(QStringLiteral("prefix"), withoutMarker(description.getPrefix()));
    map.insert(QStringLiteral("prefixTranslated"), translated(description.getPrefix()));
    map.insert(QStringLiteral("suffix"), withoutMarker(description.getSuffix()));
    map.insert(QStringLiteral("suffixTranslated"), translated(description.getSuffix()));
    map.insert(QStringLiteral("category"), description.getCategory());
    static const QRegularExpression orderPrefix(QStringLiteral("^\\d+\\."));
    map.insert(QStringLiteral("categoryTranslated"),
               translated(QString(description.getCategory()).remove(orderPrefix)));

    QString enumName;
    QStringList keys;
    QStringList keyTranslations;
    if (description.isEnumType()) {
        const QMetaEnum enumeration = description.enumerator();
        enumName = QString::fromLatin1(enumeration.name());
        for (int i = 0; i < enumeration.keyCount(); ++i) {
            keys.append(QString::fromLatin1(enumeration.key(i)));
            keyTranslations.append(translatedKey(enumeration.name(), keys.last()));
        }
    }
    map.insert(QStringLiteral("enum"), enumName);
    map.insert(QStringLiteral("enums"), keys);
    map.insert(QStringLiteral("enumTranslations"), translated(enumName));
    map.insert(QStringLiteral("enumsTranslations"), keyTranslations);

    map.insert(QStringLiteral("visibleBound"), description.getVisibleBound());
    map.insert(QStringLiteral("specialType"), description.getSpecialKind());
    map.insert(QStringLiteral("pickOption"), description.getSpecialOption());
    map.insert(QStringLiteral("pickExtensions"), pickExtensions(description.getSpecialOption()));

    const int precision = description.getPrecision();
    map.insert(QStringLiteral("precision"), precision < 0 ? QString() : QString::number(precision));
    map.insert(QStringLiteral("placeholder"), translated(description.getPlaceholder()));
    map.insert(QStringLiteral("suggestions"), description.getSuggestions());
    map.insert(QStringLiteral("priority"), QString::number(description.getPriority()));
    map.insert(QStringLiteral("icon"), description.getIcon());
    return map;
}

QString MetaCapabilities::translated(const QString& text)
{
    if (text.isEmpty())
        return text;
    if (text.startsWith(NoTranslationMarker))
        return text.mid(NoTranslationMarker.size());
    return QCoreApplication::translate("Generic", text.toUtf8().constData());
}

QString MetaCapabilities::withoutMarker(const QString& text)
{
    return text.startsWith(NoTranslationMarker) ? text.mid(NoTranslationMarker.size()) : text;
}

QString MetaCapabilities::numberEntryText(const QString& entry)
{
    QString text = entry.trimmed();
    if (text.endsWith(QLatin1Char('f'), Qt::CaseInsensitive))
        text.chop(1);
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value) ? MetaValueConverter::numberText(value) : entry;
}
