#pragma once

#include <shared/TessellumExport.h>

namespace Shared {

/*! One object of T per process, made at the first use by whichever thread comes first. T derives from
 * Singleton<T>, names it a friend and keeps its constructor to itself. */
template <class T>
class TESSELLUM_EXPORT Singleton
{
public:
    /*! Never null. The object stays reachable until the process has ended: destroying it would pull it from
     * under the threads and static objects that still use it while the process goes down. */
    static T *getInstance()
    {
        static T *const instance = new T;
        return instance;
    }
    Singleton(const Singleton &) = delete;
    Singleton &operator=(const Singleton &) = delete;

protected:
    Singleton() = default;
    virtual ~Singleton() = default;
};

} // namespace Shared
