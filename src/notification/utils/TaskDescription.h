#pragma once

#include <shared/TessellumExport.h>

#include <QString>
#include <QVariant>

#include <memory>

namespace Shared::Hierarchy {
class HierarchyNode;
}

namespace Tessellum::Notification::utils {

/*!
 * What the description of a task is made of. Taking the parts costs next to nothing; the text, which is
 * wanted only where a task hangs, is made when somebody asks for it.
 */
struct TESSELLUM_EXPORT TaskDescription
{
    const char *prefix = ""; /*!< A literal. */
    QString path;
    const char *nodePrefix = nullptr; /*!< A literal; null where the node is not part of the text. */
    std::weak_ptr<Shared::Hierarchy::HierarchyNode> node;
    const char *valuePrefix = nullptr; /*!< A literal; null where the value is not part of the text. */
    QVariant value;

    /*! The text; a node that has gone reads "<nullptr>". Any thread may call. */
    QString text() const;
};

/*! The full path of \a node, or "<nullptr>" where it has gone. */
TESSELLUM_EXPORT QString PathOrNull(const std::weak_ptr<Shared::Hierarchy::HierarchyNode> &node);

} // namespace Tessellum::Notification::utils
