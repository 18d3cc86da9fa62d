#include "app/ui/ConsoleController.h"

#include "app/OrvexModel.h"
#include "services/GlobalConsole.h"
#include "services/KxLogger.h"
#include "settings/OrvexSettings.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

ConsoleController::ConsoleController(OrvexModel* model, QObject* parent, int capacity)
    : QObject(parent)
    , m_model(model)
    , m_items(capacity)
    , m_filtered(&m_items)
{
    m_batch.setSingleShot(true);
    m_batch.setInterval(BatchMs);
    connect(&m_batch, &QTimer::timeout, this, &ConsoleController::flush);

    for (auto signal : { &QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved })
        connect(&m_filtered, signal, this, &ConsoleController::countsChanged);
    connect(&m_filtered, &QAbstractItemModel::modelReset, this, &ConsoleController::countsChanged);
    connect(&m_items, &ConsoleItemModel::typesChanged, this, &ConsoleController::typeChoicesChanged);
    connect(&m_items, &ConsoleItemModel::selectedCountChanged, this, &ConsoleController::selectedCountChanged);

    // Items may be written on worker threads: the connection queues them to this one.
    GlobalConsole* console = GlobalConsole::Instance();
    connect(console, &GlobalConsole::itemWritten, this, &ConsoleController::onItem);
    connect(console, &GlobalConsole::updatedAverage, this, [this] {
        m_averagesDirty = true;
        if (!m_batch.isActive())
            m_batch.start();
    });
    connect(console, &GlobalConsole::loggingChanged, this, &ConsoleController::loggingChanged);
    loadKeptItems();
    refreshAverages();
}

// The items written before the window existed (start-up), merged by time across the types.
void ConsoleController::loadKeptItems()
{
    QList<ConsoleItem> kept;
    for (const QString& type : GlobalConsole::getTypes()) {
        const QStringList lines = GlobalConsole::getItems(type);
        for (auto it = lines.crbegin(); it != lines.crend(); ++it)
            kept.append(ConsoleItem::parse(type, *it));
    }
    std::stable_sort(kept.begin(), kept.end(),
                     [](const ConsoleItem& a, const ConsoleItem& b) { return a.time < b.time; });
    m_items.append(kept);
}

void ConsoleController::onItem(const QString& type, const QString& line)
{
    m_pending.append(ConsoleItem::parse(type, line));
    // Only the newest `capacity` can be shown; trimmed in halves to keep appends cheap.
    if (m_pending.size() > 2 * m_items.capacity())
        m_pending.remove(0, m_pending.size() - m_items.capacity());
    if (!m_batch.isActive())
        m_batch.start();
}

void ConsoleController::flush()
{
    m_batch.stop();
    if (!m_pending.isEmpty()) {
        const QList<ConsoleItem> batch = std::exchange(m_pending, {});
        m_items.append(batch);
    }
    if (m_averagesDirty)
        refreshAverages();
}

void ConsoleController::refreshAverages()
{
    m_averagesDirty = false;
    QVariantList averages;
    for (const QString& name : GlobalConsole::getAverageNames())
        averages.append(QVariantMap{ { QStringLiteral("name"), name },
                                     { QStringLiteral("value"), GlobalConsole::getAverage(name) } });
    if (averages == m_averages)
        return;
    m_averages = averages;
    Q_EMIT averagesChanged();
}

QStringList ConsoleController::typeChoices() const
{
    QStringList choices{ tr("All types") };
    for (const QString& type : m_items.types())
        choices.append(type.isEmpty() ? tr("General") : type);
    return choices;
}

void ConsoleController::setTypeChoice(int choice)
{
    const QStringList types = m_items.types();
    if (choice == m_typeChoice || choice < 0 || choice > types.size())
        return;
    m_typeChoice = choice;
    m_filtered.setType(choice == 0 ? std::nullopt : std::optional<QString>(types[choice - 1]));
    Q_EMIT filterChanged();
    Q_EMIT countsChanged();
}

void ConsoleController::setFilterText(const QString& text)
{
    if (text == m_filterText)
        return;
    m_filterText = text;
    m_filtered.setText(text);
    Q_EMIT filterChanged();
    Q_EMIT countsChanged();
}

void ConsoleController::select(int row, int modifiers)
{
    if (row < 0 || row >= m_filtered.rowCount())
        return;
    const int sourceRow = m_filtered.mapToSource(m_filtered.index(row, 0)).row();
    if (modifiers & Qt::ControlModifier) {
        m_items.setSelected(sourceRow, !m_items.at(sourceRow).selected);
    } else {
        const int anchorSource = (modifiers & Qt::ShiftModifier) && m_anchor ? m_items.rowOfSerial(m_anchor) : -1;
        const int anchorRow = anchorSource < 0 ? -1 : m_filtered.mapFromSource(m_items.index(anchorSource)).row();
        m_items.clearSelection();
        const int first = anchorRow < 0 ? row : qMin(anchorRow, row);
        const int last = anchorRow < 0 ? row : qMax(anchorRow, row);
        for (int shown = first; shown <= last; ++shown)
            m_items.setSelected(m_filtered.mapToSource(m_filtered.index(shown, 0)).row(), true);
        if (anchorRow >= 0)
            return; // the range grows from the same anchor on the next Shift click
    }
    m_anchor = m_items.at(sourceRow).serial;
}

int ConsoleController::copySelected()
{
    return copyRows(true);
}

int ConsoleController::copyAll()
{
    return copyRows(false);
}

int ConsoleController::copyRows(bool selectedOnly)
{
    QStringList lines;
    for (int row = 0; row < m_filtered.rowCount(); ++row) {
        const ConsoleItem& item = m_items.at(m_filtered.mapToSource(m_filtered.index(row, 0)).row());
        if (!selectedOnly || item.selected)
            lines.append(item.line());
    }
    if (lines.isEmpty()) {
        setMessage(selectedOnly ? tr("No line selected") : tr("No line to copy"));
        return 0;
    }
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    setMessage(lines.size() == 1 ? tr("1 line copied") : tr("%1 lines copied").arg(lines.size()));
    return int(lines.size());
}

void ConsoleController::clear()
{
    m_pending.clear();
    m_items.clear();
    m_anchor = 0;
    setMessage(QString());
}

bool ConsoleController::loggingEnabled() const
{
    return GlobalConsole::isLoggingEnabled();
}

void ConsoleController::setLoggingEnabled(bool on)
{
    m_model->settings()->setLoggingEnabled(on); // the model makes the log's folder
}

QString ConsoleController::logFilePath() const
{
    const QString written = KxLogger::currentFilePath();
    return written.isEmpty() ? GlobalConsole::logFilePath() : written;
}

void ConsoleController::setMessage(const QString& text)
{
    if (text == m_message)
        return;
    m_message = text;
    Q_EMIT messageChanged();
}
