#pragma once

#include <appconfig/backends/Backend.h>
#include <shared/foundation/MetaPropertyWrapper.h>

namespace Tessellum::AppConfig::Backends {

/*!
 * The Qt properties of an object as attributes: a read reads the property, a write sets it, on the object's
 * thread.
 *
 * The data is a QObject*, or a QPair<QObject*, QStringList> with the names of the wanted properties; without
 * names these are the ones that a user interface object is expected to have ("text", "enabled", "toolTip" and
 * such). The object must live during createBackend() and stay on its thread; it may die at any time later,
 * and its attributes fail from then on. Needs an application object. There is nothing to save. Any thread may
 * call.
 *
 * A read or write never waits for longer than 100 ms for the object's thread; see
 * Shared::MetaPropertyWrapper.
 */
class ObjectPropertiesBackend : public Backend
{
    Q_OBJECT
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;
    bool saveAttributes() override;
    /*! False if the backend's data is no object, or one that has died. */
    bool loadAttributesCreateDataInternal(Attributes::AttributesCreateData &out,
                                          const Notification::CreatePoint &waitPoint) override;

    /*!
     * The details of a backend of this type with all that has to be known of the object, so that it need not
     * be touched on another thread; others as they are. With no lock held: reads properties where the caller
     * is on the object's thread.
     */
    static BackendCreateDataDetails BindObject(const QString &type, const BackendCreateDataDetails &details);

private:
    QList<Shared::MetaPropertyWrapperPtr> wrappers; /*!< set by the load */
};

} // namespace Tessellum::AppConfig::Backends
