#pragma once

#include <shared/communication/protocols/ProtocolMessageInterface.h>
#include <shared/communication/protocols/ProtocolVersion.h>

#include <QMap>
#include <QObject>
#include <QStringList>

namespace Shared::Communication::Protocols {

/*!
 * A set of messages, known by name, that is installed on a connection once: it then has an object for each
 * message that ProtocolMessageFactory can make.
 *
 * Threads: one, usually that of the connection, since the messages come to live on the thread that installs.
 */
class TESSELLUM_EXPORT Protocol : public QObject
{
    Q_OBJECT

public:
    explicit Protocol(const ProtocolVersion &version, QObject *parent = nullptr);
    ~Protocol() override;

    virtual QStringList getProtocolMessages() const;
    /*! Adds the names that are not there yet; how many they were. They count for installations to come. */
    virtual int registerProtocolMessages(const QStringList &names);
    /*! How many of \a names were there and have gone. */
    virtual int unregisterProtocolMessages(const QStringList &names);
    /*! Makes the messages for \a connection, which must have been opened once. False, with the reason in the
     * log, where the protocol has a context already or the connection no device. Messages that cannot be made
     * are logged and left out. An empty \a context leaves the protocol free to be installed again. */
    virtual bool installProtocol(const QString &context,
                                 const std::shared_ptr<Connections::Connection> &connection);

    ProtocolVersion getProtocolVersion() const;
    /*! Empty for a message that is not installed. */
    std::shared_ptr<ProtocolMessageInterface> getInstalledMessageById(unsigned char id) const;
    QList<unsigned char> getInstalledMessageIds() const;
    /*! What it was installed with; empty before. */
    QString getProtocolContext() const;

private:
    const ProtocolVersion protocolVersion;
    QStringList messageNames;
    QMap<unsigned char, std::shared_ptr<ProtocolMessageInterface>> installed;
    QString protocolContext;
};

} // namespace Shared::Communication::Protocols
