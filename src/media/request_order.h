#pragma once

#include <QObject>

namespace cratewell {

// Where a request stands among those that wait. What the pointer is on comes first. Of the rest newer bursts
// go ahead of older ones, because they are what is on the screen now, and of one burst, which is all that one
// pass of the event loop requests, the first goes first, so that a page fills from its beginning.
struct RequestPlace
{
    enum class Rank : quint8 { Later, Usual, Interactive };

    Rank rank = Rank::Usual;
    quint64 burst = 0;
    quint64 number = 0; // of all requests: a larger one is newer

    // Another request for the same work raises its place, but never lowers its rank.
    void join(const RequestPlace &newer) { *this = {std::max(rank, newer.rank), newer.burst, newer.number}; }

    // Whether `a` is served before `b`.
    friend bool operator<(const RequestPlace &a, const RequestPlace &b)
    {
        if (a.rank != b.rank)
            return a.rank > b.rank;
        return a.burst != b.burst ? a.burst > b.burst : a.number < b.number;
    }
    friend bool operator==(const RequestPlace &, const RequestPlace &) = default;
};

// Gives out places. Main thread.
class RequestOrder
{
public:
    RequestPlace next(RequestPlace::Rank rank = RequestPlace::Rank::Usual);

private:
    QObject m_eventLoop; // ends the burst with the pass that began it
    bool m_burstIsOpen = false;
    quint64 m_burst = 0;
    quint64 m_number = 0;
};

} // namespace cratewell
