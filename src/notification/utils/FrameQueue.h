#pragma once

#include <notification/utils/FrameWorker.h>

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace Tessellum::Notification::utils {

/*!
 * Has a worker do the frames of several peers, one of each in turn, so that who sends many does not keep the
 * others waiting. What else is posted to the worker comes between two frames. The end of the queue drops what
 * waits in it.
 *
 * Made with std::make_shared. Any thread may call. The mutex guards the frames; nothing is called and no step
 * dies under it. A step dies on the worker, or where the queue, its peer or the worker ends: what must not
 * die there is held elsewhere, too.
 */
template <class Peer>
class FrameQueue : public std::enable_shared_from_this<FrameQueue<Peer>>
{
public:
    using Step = std::function<void()>;
    enum class Added {
        Queued,
        Full, /*!< The peer would have more waiting than it may. */
        Ended /*!< The worker takes nothing any more. */
    };

    /*! \a bytesOfPeer: the most that may wait of one peer. Where four times as much waits of all together,
     * each may only have its share of it. */
    FrameQueue(std::shared_ptr<FrameWorker> frameWorker, qint64 bytesOfPeer)
        : worker(std::move(frameWorker))
        , limit(bytesOfPeer)
    { }
    Q_DISABLE_COPY_MOVE(FrameQueue)

    /*! \a step does what a frame of \a bytes asks for; freed unless it is queued. */
    Added add(const Peer &peer, qint64 bytes, Step step)
    {
        if (worker->hasEnded()) {
            clear();
            return Added::Ended;
        }
        {
            const QMutexLocker locker(&mutex);
            if (!fitsLocked(waitingLocked(peer), bytes))
                return Added::Full;
            Lane &lane = lanes[peer];
            if (lane.frames.empty())
                turns.push_back(peer);
            lane.bytes += bytes;
            allBytes += bytes;
            lane.frames.push_back({bytes, std::move(step)});
            if (std::exchange(isPosted, true))
                return Added::Queued;
        }
        return postNext() ? Added::Queued : Added::Ended;
    }

    /*! Drops what waits of a peer; its running step goes on. */
    void drop(const Peer &peer)
    {
        Lane dropped;
        const QMutexLocker locker(&mutex);
        takeLocked(peer, dropped);
    }

    /*! For a peer that has gone: what waits is still done, but for that of a peer by which all that have gone
     * would have more waiting than one may. */
    void leave(const Peer &peer)
    {
        Lane dropped;
        const QMutexLocker locker(&mutex);
        const auto lane = lanes.find(peer);
        if (lane == lanes.end() || lane->second.hasLeft)
            return;
        if (lane->second.bytes > limit - leftBytes) {
            takeLocked(peer, dropped);
            return;
        }
        lane->second.hasLeft = true;
        leftBytes += lane->second.bytes;
    }

private:
    struct Frame
    {
        qint64 bytes = 0;
        Step step;
    };
    struct Lane
    {
        std::deque<Frame> frames; // never empty in the table
        qint64 bytes = 0;
        bool hasLeft = false;
    };

    void takeLocked(const Peer &peer, Lane &taken)
    {
        const auto lane = lanes.find(peer);
        if (lane == lanes.end())
            return;
        taken = std::move(lane->second);
        allBytes -= taken.bytes;
        if (taken.hasLeft)
            leftBytes -= taken.bytes;
        lanes.erase(lane);
        turns.erase(std::find(turns.begin(), turns.end(), peer));
    }

    qint64 waitingLocked(const Peer &peer) const
    {
        const auto lane = lanes.find(peer);
        return lane == lanes.end() ? 0 : lane->second.bytes;
    }

    bool fitsLocked(qint64 waiting, qint64 bytes) const
    {
        constexpr int peersWithoutShares = 4;
        if (bytes > limit - waiting)
            return false;
        return allBytes + bytes <= peersWithoutShares * limit
            || waiting + bytes <= limit / static_cast<qint64>(lanes.size());
    }

    /*! One frame at a time, so that whatever else the worker has to do comes soon. */
    bool postNext()
    {
        if (worker->post([weak = this->weak_from_this()] {
                if (const auto self = weak.lock())
                    self->runNext();
            }))
            return true;
        clear();
        return false;
    }

    void clear()
    {
        std::map<Peer, Lane> dropped;
        const QMutexLocker locker(&mutex);
        dropped.swap(lanes);
        turns.clear();
        allBytes = 0;
        leftBytes = 0;
        isPosted = false;
    }

    void runNext()
    {
        bool isMore = false;
        const Step step = takeNext(isMore);
        if (isMore)
            postNext();
        if (step)
            step();
    }

    Step takeNext(bool &isMore)
    {
        const QMutexLocker locker(&mutex);
        Step step;
        if (!turns.empty()) {
            const Peer peer = turns.front();
            turns.pop_front();
            const auto lane = lanes.find(peer);
            Frame frame = std::move(lane->second.frames.front());
            lane->second.frames.pop_front();
            lane->second.bytes -= frame.bytes;
            allBytes -= frame.bytes;
            if (lane->second.hasLeft)
                leftBytes -= frame.bytes;
            step = std::move(frame.step);
            if (lane->second.frames.empty())
                lanes.erase(lane);
            else
                turns.push_back(peer);
        }
        isMore = !turns.empty();
        isPosted = isMore;
        return step;
    }

    const std::shared_ptr<FrameWorker> worker;
    const qint64 limit;
    QMutex mutex;
    std::map<Peer, Lane> lanes;
    std::deque<Peer> turns; // of those in the table
    qint64 allBytes = 0;
    qint64 leftBytes = 0; // of the peers that have gone
    bool isPosted = false;
};

} // namespace Tessellum::Notification::utils
