#pragma once

#include <QPair>
#include <QString>
#include <QUrl>
#include <QVector>

#include <optional>

/*! Where a server listens: "127.0.0.1:8080", "[::1]:0", "localhost:8080". */
struct Address
{
    QString host;
    int port = 0;

    /*! Nothing for a text that is no address with a port. */
    static std::optional<Address> Parse(const QString &text);
    QString toString() const;
    /*! The URL of a web socket there, with a query of \a items. */
    QUrl toUrl(const QVector<QPair<QString, QString>> &items) const;
};
