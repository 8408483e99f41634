#pragma once

#include <appdata/interfaces/StorageManipulationInterface.h>
#include <appdata/interfaces/StorageQueryInterface.h>

#include <QStringList>

#include <memory>

namespace Tessellum::AppData::Interfaces {

/*! One place where entries persist. Threads: any. The interfaces that it gives keep what they act on alive.
 */
class TESSELLUM_EXPORT StorageInterface
{
public:
    virtual QString getType() const = 0;
    /*! The type keys to which the implementation answers. */
    virtual QStringList getEntryTypes() const = 0;
    virtual QString getLabel() const = 0;
    /*! False, with nothing changed, for an empty text. */
    virtual bool setLabel(const QString &label) = 0;
    virtual QString getName() const = 0;
    /*! The id of the node, a uuid. */
    virtual QString getId() const = 0;
    virtual LoadStatus getLoadStatus() const = 0;
    virtual std::shared_ptr<const StorageManipulationInterface> getManipulationInterface() const = 0;
    virtual std::shared_ptr<StorageManipulationInterface> getManipulationInterface() = 0;
    virtual std::shared_ptr<const StorageQueryInterface> getQueryInterface() const = 0;
    virtual std::shared_ptr<StorageQueryInterface> getQueryInterface() = 0;
    virtual ~StorageInterface() = default;
};

} // namespace Tessellum::AppData::Interfaces
