#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/backends/ConstraintsBackend.h>
#include <appconfig/utils/RepositoryProvider.h>
#include <appconfig/validation/AttributeValidationRepository.h>
#include <notification/utils/MakeNode.h>
#include <shared/foundation/IniFile.h>

#include <QFile>
#include <QMap>
#include <QRegExp>

namespace Tessellum::AppConfig::Backends {

using NodePtr = std::shared_ptr<Shared::Hierarchy::HierarchyNode>;

QStringList ConstraintsBackend::TypeKeys()
{
    return {QStringLiteral("constraint"), QStringLiteral("constraints")};
}

QStringList ConstraintsBackend::getTypeKeys() const
{
    return TypeKeys();
}

bool ConstraintsBackend::loadAttributes(Notification::ThreadPool &, const Notification::CreatePoint &)
{
    QFile file(getCreateData().data.toString());
    Shared::IniContent content;
    if (!Shared::ParseIniFile(file, content, QRegExp(QStringLiteral("="))))
        return false;
    // In the order of their names, so that of two sections with one id the same wins in every process.
    QStringList names = content.keys();
    names.sort();
    int registered = 0;
    for (const QString &name : qAsConst(names)) {
        if (registerConstraint(makeSectionNode(name, content.value(name))) == ConstraintResult::Registered)
            ++registered;
    }
    return registered > 0;
}

bool ConstraintsBackend::saveAttributes()
{
    return false;
}

NodePtr ConstraintsBackend::makeSectionNode(const QString &name, const Section &section) const
{
    const auto repository = AppConfig::utils::RepositoryProvider::getInstance();
    const NodePtr holder = Notification::utils::MakeNode<Shared::Hierarchy::HierarchyNodeInstance>();
    for (auto entry = section.begin(); entry != section.end(); ++entry) {
        Attributes::AttributeCreateData::AttributeCreateDataDetails details;
        details.value = entry.value();
        details.access = getCreateData().access;
        const QString place = repository->getPathFromPathElements({name, entry.key()});
        if (!Attributes::CreateAttributeInHierarchy(holder, {place, details}))
            return nullptr;
    }
    return holder->findChildByRelativePath(name);
}

ConstraintsBackend::ConstraintResult ConstraintsBackend::registerConstraint(const NodePtr &node)
{
    if (!node)
        return ConstraintResult::Failed;
    const auto type = std::dynamic_pointer_cast<Interfaces::AttributeInterface>(
        node->getChildById(QStringLiteral("Type")));
    if (!type)
        return ConstraintResult::Skipped;
    QVariant typeName;
    const auto repository = Validation::AttributeValidationRepository::getInstance();
    const auto validation = type->getValue(typeName, QMetaType::QString)
        ? repository->createValidation(typeName.toString(), node->getId())
        : nullptr;
    if (!validation)
        return ConstraintResult::Failed;
    for (const NodePtr &child : node->getChildren(false)) {
        if (!validation->addChild(child, nullptr))
            return ConstraintResult::Failed;
    }
    return repository->registerBackendValidation(validation, self()) && addChild(validation, nullptr)
        ? ConstraintResult::Registered
        : ConstraintResult::Failed;
}

} // namespace Tessellum::AppConfig::Backends
