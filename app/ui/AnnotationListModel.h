#pragma once

#include <QAbstractListModel>
#include <QList>

// The annotations of the current recording, newest last.
class AnnotationListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
public:
    enum Role { TextRole = Qt::UserRole + 1, OnsetMsRole, OnsetTextRole };

    explicit AnnotationListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void append(const QString& text, int onsetMs);
    void clear();

Q_SIGNALS:
    void countChanged();

private:
    QList<QPair<QString, int>> m_items;
};
