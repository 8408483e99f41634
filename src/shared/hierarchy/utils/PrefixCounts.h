#pragma once

#include <QtGlobal>

#include <vector>

namespace Shared::Hierarchy::utils {

/*!
 * A row of marks that tells how many stand before a place and where the n-th one stands, both in logarithmic
 * time: each number is the sum of the marks of a stretch whose length is the lowest bit of its place, counted
 * from 1. Threads: none of its own.
 */
class PrefixCounts
{
public:
    bool isEmpty() const { return sums.empty(); }
    void clear() { std::vector<quint32>().swap(sums); }

    /*! Appends a place with or without a mark. */
    void append(bool marked)
    {
        const size_t place = sums.size() + 1;
        quint32 sum = marked ? 1 : 0;
        for (size_t length = 1; length < lowestBit(place); length *= 2)
            sum += sums[place - length - 1];
        sums.push_back(sum);
    }
    /*! Takes the mark off \a place, which has one. */
    void unmark(size_t place)
    {
        for (++place; place <= sums.size(); place += lowestBit(place))
            --sums[place - 1];
    }
    /*! The number of marks before \a place. */
    quint32 before(size_t place) const
    {
        quint32 sum = 0;
        for (; place > 0; place -= lowestBit(place))
            sum += sums[place - 1];
        return sum;
    }
    /*! The place of the mark with \a marks before it, which there must be. */
    size_t find(quint32 marks) const
    {
        size_t length = 1;
        while (length * 2 <= sums.size())
            length *= 2;
        size_t place = 0;
        for (; length > 0; length /= 2) {
            if (place + length > sums.size() || sums[place + length - 1] > marks)
                continue;
            place += length;
            marks -= sums[place - 1];
        }
        return place;
    }

private:
    static size_t lowestBit(size_t place) { return place & (~place + 1); }

    std::vector<quint32> sums;
};

} // namespace Shared::Hierarchy::utils
