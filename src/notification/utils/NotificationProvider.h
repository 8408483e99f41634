#pragma once

#include <notification/ExaminerRegistration.h>
#include <notification/interfaces/NotificationInterface.h>

#include <memory>

namespace Tessellum::Notification::utils {

/*!
 * Registers the handlers of one repository; tasks take its registrations to tell of their points. The
 * operations are those of NotificationInterface, without a lock of a repository. Handles may outlive the
 * provider.
 */
class TESSELLUM_EXPORT NotificationProvider
{
public:
    using HandlePointer = Interfaces::NotificationInterface::HandlePointer;

    NotificationProvider();

    HandlePointer registerCreateHandler(const QString &path, const CreateHandler &handler,
                                        const CreatePoint &point);
    HandlePointer registerUpdateHandler(const QString &path, const UpdateHandler &handler,
                                        const UpdatePoint &point);
    HandlePointer registerDeleteHandler(const QString &path, const DeleteHandler &handler,
                                        const DeletePoint &point);
    bool unregisterCreateHandler(const QString &uuid);
    bool unregisterUpdateHandler(const QString &uuid);
    bool unregisterDeleteHandler(const QString &uuid);

    std::shared_ptr<ExaminerRegistration<CreatePoint>> getCreateRegistration() const
    {
        return createRegistration;
    }
    std::shared_ptr<ExaminerRegistration<UpdatePoint>> getUpdateRegistration() const
    {
        return updateRegistration;
    }
    std::shared_ptr<ExaminerRegistration<DeletePoint>> getDeleteRegistration() const
    {
        return deleteRegistration;
    }

private:
    const std::shared_ptr<ExaminerRegistration<CreatePoint>> createRegistration;
    const std::shared_ptr<ExaminerRegistration<UpdatePoint>> updateRegistration;
    const std::shared_ptr<ExaminerRegistration<DeletePoint>> deleteRegistration;
};

} // namespace Tessellum::Notification::utils
