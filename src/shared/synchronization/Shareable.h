#pragma once

#include <shared/TessellumExport.h>

#include <memory>

namespace Shared::Synchronization {

namespace utils {
/*! Logs that an object was asked for its own shared pointer while it had none. */
TESSELLUM_EXPORT void ReportMissingSharedPointer(const std::bad_weak_ptr &reason);
} // namespace utils

/*! The base of objects that live in a std::shared_ptr and hand out further pointers to themselves. */
template <class T>
class TESSELLUM_EXPORT Shareable : public std::enable_shared_from_this<T>
{
public:
    virtual ~Shareable() = default;

    /*! A further owner of this object. Empty, with a warning in the log, where no shared pointer owns it
     *  (any more): a member was called during construction or destruction. Never throws. */
    std::shared_ptr<T> getSharedFromThis() { return share<T>(*this); }
    std::shared_ptr<const T> getSharedFromThis() const { return share<const T>(*this); }

private:
    template <class Pointee, class Self>
    static std::shared_ptr<Pointee> share(Self &object)
    {
        try {
            return object.shared_from_this();
        } catch (const std::bad_weak_ptr &reason) {
            utils::ReportMissingSharedPointer(reason);
            return std::shared_ptr<Pointee>();
        }
    }
};

} // namespace Shared::Synchronization
