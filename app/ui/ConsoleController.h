#pragma once

#include "app/ui/ConsoleFilterModel.h"
#include "app/ui/ConsoleItemModel.h"

#include <QObject>
#include <QTimer>
#include <QVariantList>

class OrvexModel;

// The console screen: the console's items as they come (kept bounded, added in batches so a
// flood of lines never stalls the window), filtered by type and text, copied to the clipboard;
// the running averages and the log file.
class ConsoleController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ConsoleFilterModel* items READ items CONSTANT)
    Q_PROPERTY(int keptCount READ keptCount NOTIFY countsChanged)
    Q_PROPERTY(int shownCount READ shownCount NOTIFY countsChanged)
    Q_PROPERTY(int capacity READ capacity CONSTANT)
    Q_PROPERTY(QStringList typeChoices READ typeChoices NOTIFY typeChoicesChanged)
    Q_PROPERTY(int typeChoice READ typeChoice WRITE setTypeChoice NOTIFY filterChanged)
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectedCountChanged)
    Q_PROPERTY(QVariantList averages READ averages NOTIFY averagesChanged)
    Q_PROPERTY(bool loggingEnabled READ loggingEnabled WRITE setLoggingEnabled NOTIFY loggingChanged)
    Q_PROPERTY(QString logFilePath READ logFilePath NOTIFY loggingChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    static constexpr int DefaultCapacity = 10000;
    // New items wait this long to be added together.
    static constexpr int BatchMs = 100;

    explicit ConsoleController(OrvexModel* model, QObject* parent = nullptr, int capacity = DefaultCapacity);

    ConsoleFilterModel* items() { return &m_filtered; }
    int keptCount() const { return m_items.rowCount(); }
    int shownCount() const { return m_filtered.rowCount(); }
    int capacity() const { return m_items.capacity(); }

    // "All types" first, then each type seen ("General" for lines without one).
    QStringList typeChoices() const;
    int typeChoice() const { return m_typeChoice; }
    void setTypeChoice(int choice);
    QString filterText() const { return m_filterText; }
    void setFilterText(const QString& text);

    // Selection by shown row: a plain click selects only that row, Ctrl toggles it, Shift
    // selects from the last clicked row to this one.
    Q_INVOKABLE void select(int row, int modifiers = 0);
    Q_INVOKABLE void clearSelection() { m_items.clearSelection(); }
    int selectedCount() const { return m_items.selectedCount(); }
    // The lines shown (selected ones, or all) on the clipboard; how many were copied.
    Q_INVOKABLE int copySelected();
    Q_INVOKABLE int copyAll();
    // Empties the window's list; the console itself keeps its items.
    Q_INVOKABLE void clear();
    // Adds what is waiting now instead of after the batch delay.
    Q_INVOKABLE void flush();

    QVariantList averages() const { return m_averages; }
    bool loggingEnabled() const;
    // Through the setting, so the choice stays for the next start.
    void setLoggingEnabled(bool on);
    // Where the lines go: the file already written to, else the one logging will start.
    QString logFilePath() const;
    QString message() const { return m_message; }

Q_SIGNALS:
    void countsChanged();
    void typeChoicesChanged();
    void filterChanged();
    void selectedCountChanged();
    void averagesChanged();
    void loggingChanged();
    void messageChanged();

private:
    void loadKeptItems();
    void onItem(const QString& type, const QString& line);
    void refreshAverages();
    int copyRows(bool selectedOnly);
    void setMessage(const QString& text);

    OrvexModel* m_model;
    ConsoleItemModel m_items;
    ConsoleFilterModel m_filtered;
    QList<ConsoleItem> m_pending;
    QTimer m_batch;
    bool m_averagesDirty = false;
    QVariantList m_averages;
    int m_typeChoice = 0;
    QString m_filterText;
    quint64 m_anchor = 0;
    QString m_message;
};
