#pragma once

#include <shared/communication/connections/Connection.h>
#include <shared/communication/protocols/ProtocolHeaderInterface.h>
#include <shared/communication/protocols/ProtocolMessageTrackingInterface.h>

#include <memory>

namespace Shared::Communication::Protocols {

/*!
 * One kind of message of a protocol on one connection: its headers, and what follows its requests and
 * responses. Concrete messages derive from it, encode their requests and read their responses.
 *
 * Threads: any; the lock guards the pointers. It lives on the thread that made it.
 */
class TESSELLUM_EXPORT ProtocolMessageInterface
    : public Synchronization::SharedLockable<ProtocolMessageInterface>
{
    Q_OBJECT

public:
    /*! How a request ended. */
    enum class ResponseStatus {
        Ok = 0,
        Refused = 1, ///< the device answered that it will not
        Malformed = 2, ///< the answer could not be read
        TimedOut = 3, ///< no answer came
        Disconnected = 4, ///< the connection ended before an answer
    };
    Q_ENUM(ResponseStatus)

    ProtocolMessageInterface(const QString &id, const std::shared_ptr<ProtocolHeaderInterface> &requestHeader,
                             const std::shared_ptr<ProtocolHeaderInterface> &responseHeader,
                             const std::shared_ptr<Connections::Connection> &connection);
    ~ProtocolMessageInterface() override;

    QString getId() const;
    std::shared_ptr<Connections::Connection> getConnection() const;
    std::shared_ptr<ProtocolHeaderInterface> getRequestHeader() const;
    std::shared_ptr<ProtocolHeaderInterface> getResponseHeader() const;
    /*! False, with nothing changed, for an empty one. */
    bool setRequestHeader(const std::shared_ptr<ProtocolHeaderInterface> &header);
    /*! As setRequestHeader(). */
    bool setResponseHeader(const std::shared_ptr<ProtocolHeaderInterface> &header);
    std::shared_ptr<ProtocolMessageTrackingInterface> getTracking() const;
    /*! An empty one ends the tracking. */
    void setTracking(const std::shared_ptr<ProtocolMessageTrackingInterface> &tracking);

    /*! What the tracking says; true without one. */
    bool canProcessRequest() const;
    /*! Tells the tracking of a request; false without one. */
    bool trackRequest();
    /*! Tells the tracking of a response; false without one. */
    bool trackResponse();

Q_SIGNALS:
    /*! A request of the peer for this message has come. */
    void messageRequestReceived(const QByteArray &data) const;

private:
    bool replace(std::shared_ptr<ProtocolHeaderInterface> &header,
                 const std::shared_ptr<ProtocolHeaderInterface> &next);

    const QString messageId;
    std::shared_ptr<ProtocolHeaderInterface> currentRequestHeader;
    std::shared_ptr<ProtocolHeaderInterface> currentResponseHeader;
    const std::shared_ptr<Connections::Connection> messageConnection;
    std::shared_ptr<ProtocolMessageTrackingInterface> currentTracking;
};

} // namespace Shared::Communication::Protocols
