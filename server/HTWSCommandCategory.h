#pragma once

#include <QList>
#include <QObject>
#include <QString>

// A named group of commands for the reference page; groups may nest.
class HTWSCommandCategory : public QObject
{
    Q_OBJECT
public:
    explicit HTWSCommandCategory(QObject* parent = nullptr);
    HTWSCommandCategory(QString name, QString description, QList<HTWSCommandCategory*> subcategories,
                        QObject* parent = nullptr);

    QString getName() const { return m_name; }
    QString getDescription() const { return m_description; }
    QList<HTWSCommandCategory*> getSubcategories() const { return m_subcategories; }

private:
    QString m_name;
    QString m_description;
    QList<HTWSCommandCategory*> m_subcategories;
};
