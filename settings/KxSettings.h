#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

class MetaDescription;

// Base of every settings class. The derived class declares its settings as Qt properties
// (READ getFoo, WRITE setFoo, NOTIFY FooChanged) with class-information metadata beside
// them, and calls initialize() last in its constructor: the meta-object is complete only
// then. initialize() describes every property, applies the declared defaults and loads the
// settings file.
//
// The file is "<storage folder>/<ClassName>.json", a JSON object with one entry per
// property (numbers and booleans as JSON values, everything else in its text form). Every
// change is written at once (unless auto-save is off), atomically. A missing file means
// defaults; a damaged one is reported, kept aside as "<ClassName>.json.bad" and replaced by
// the defaults; a value that fails its property's checks is reported and left at its
// default. Entries for unknown names are kept and written back, so a file shared with
// another version of the program loses nothing.
class KxSettings : public QObject
{
    Q_OBJECT
public:
    explicit KxSettings(QObject* parent = nullptr);
    ~KxSettings() override;

    // Describe, apply defaults, load. Later calls do nothing.
    void initialize();
    bool isInitialized() const { return m_initialized; }

    // One description per property, in declaration order, QObject's own "objectName" left out.
    QList<MetaDescription*> metaDescriptor() const { return m_descriptions; }
    // Exact name first, then ignoring letter case; nullptr when unknown.
    MetaDescription* getPropertyByName(const QString& name) const;

    // Capability objects (see MetaCapabilities for the keys); empty map for an unknown name.
    QVariantMap getPropertyCapabilities(const QString& name) const;
    QList<QVariantMap> getAllCapabilities() const;
    // With onlyVisible, properties hidden right now (NotVisible, or a failing visibility
    // condition) are left out: what a settings page shows at this moment.
    QJsonArray getAllCapabilitiesJson(bool onlyVisible = false) const;

    // By property name, checked like MetaDescription::setTextValue; an unknown name is refused
    // with a console line.
    bool setTextValue(const QString& name, const QString& text);
    QString getTextValue(const QString& name) const;
    void restoreDefaults();

    // The class name; it names the file.
    QString getSettingsName() const;
    QString getFilePath() const;
    // Defaults, then the file. False when the file was damaged (defaults are used then).
    bool load();
    bool save();
    // When off, changes stay in memory until save() (for example values given on the
    // command line for one run only).
    void setAutoSave(bool enabled) { m_autoSave = enabled; }
    bool isAutoSave() const { return m_autoSave; }

    // Folder of every settings file; empty (the start value) means the standard configuration
    // folder (QStandardPaths::AppConfigLocation). Tests and portable runs point it elsewhere
    // before creating settings objects.
    static void setStorageFolder(const QString& folder);
    static QString storageFolder();

Q_SIGNALS:
    void settingChanged(QString name);

protected:
    // Setter body of the derived classes: store and notify only on a real change.
    template <typename Owner, typename T>
    void assign(T& member, const T& value, void (Owner::*changed)())
    {
        if (member == value)
            return;
        member = value;
        Q_EMIT(static_cast<Owner*>(this)->*changed)();
    }

private:
    void describeProperties();
    void onValueChanged(MetaDescription* description);
    bool applyFileEntries(const QJsonObject& object);
    QJsonObject toJson() const;

    static QString s_storageFolder;

    QList<MetaDescription*> m_descriptions;
    QJsonObject m_unknownEntries;
    bool m_initialized = false;
    bool m_loading = false;
    bool m_autoSave = true;
};
