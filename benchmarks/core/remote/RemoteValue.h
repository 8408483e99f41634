#pragma once

#include <QObject>

/*! A property that Qt Remote Objects copy into another process. */
class RemoteValue : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double value READ getValue WRITE setValue NOTIFY valueChanged)

public:
    double getValue() const { return value; }

public Q_SLOTS:
    void setValue(double newValue)
    {
        value = newValue;
        Q_EMIT valueChanged(value);
    }

Q_SIGNALS:
    void valueChanged(double newValue);

private:
    double value = 0;
};
