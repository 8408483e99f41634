#pragma once

#include <appconfig/backends/Backend.h>

#include <QHash>

namespace Tessellum::AppConfig::Backends {

/*!
 * Reads validations from an INI file, registers them and hangs them beneath its node. Each section is one
 * validation, its name the id; the keys are "Type", "Minimum", "Maximum" and "Clipping". A section without
 * "Type" is skipped, one that cannot be made whole is dropped and stops no other. There is nothing to save.
 */
class ConstraintsBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();

    QStringList getTypeKeys() const override;
    /*! True if at least one validation was made; makes them on the calling thread, without a task. */
    bool loadAttributes(Notification::ThreadPool &pool, const Notification::CreatePoint &waitPoint) override;
    bool saveAttributes() override;

private:
    using Section = QHash<QString, QVariant>;
    enum class ConstraintResult { Registered, Skipped, Failed };

    std::shared_ptr<Shared::Hierarchy::HierarchyNode> makeSectionNode(const QString &name,
                                                                      const Section &section) const;
    ConstraintResult registerConstraint(const std::shared_ptr<Shared::Hierarchy::HierarchyNode> &node);
};

} // namespace Tessellum::AppConfig::Backends
