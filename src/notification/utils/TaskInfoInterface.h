#pragma once

#include <QString>

namespace Tessellum::Notification::utils {

/*! What can describe itself in a log line. */
class TaskInfoInterface
{
public:
    virtual ~TaskInfoInterface() = default;
    /*! One line that names the work and its object. */
    virtual QString getDescription() const = 0;
};

} // namespace Tessellum::Notification::utils
