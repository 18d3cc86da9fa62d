#pragma once

#include <QObject>
#include <QVariant>

// The value side of a property description, as a Qt property that screens can bind to.
class AbstractMetaDescription : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant value READ getValue WRITE writeValue NOTIFY valueChanged)
public:
    explicit AbstractMetaDescription(QObject* parent = nullptr);
    ~AbstractMetaDescription() override;

    virtual QVariant getValue() const = 0;
    virtual bool setValue(const QVariant& value) = 0;

    // Property writer: the result of setValue is reported by the implementation itself.
    void writeValue(const QVariant& value) { setValue(value); }

Q_SIGNALS:
    void valueChanged(QVariant value);
};
