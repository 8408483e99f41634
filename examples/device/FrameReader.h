#pragma once

#include "SupplyFrame.h"

#include <shared/communication/device_api/PayloadDecoder.h>

/*! Makes frames of the bytes of a stream, however they are cut. For one thread. */
class FrameReader
{
public:
    /*! The frames that \a bytes complete; none any more once the stream is damaged. */
    QVector<SupplyFrame> take(const QByteArray &bytes);
    /*! Whether something came that is no header: nothing tells where the next one would begin. */
    bool isDamaged() const { return damaged; }
    /*! Whether a frame has begun and not ended. */
    bool isWithinFrame() const { return decoder || !rest.isEmpty(); }

private:
    bool beginFrame(int &position);

    QByteArray rest; // not read yet
    SupplyHeader header;
    std::optional<Shared::Communication::DeviceApi::PayloadDecoder> decoder; // of the frame that is coming
    bool damaged = false;
};
