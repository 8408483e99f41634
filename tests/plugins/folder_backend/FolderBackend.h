#pragma once

#include <appconfig/backends/Backend.h>

/*!
 * A folder of small text files, as attributes: each file is one value, its name the path. It is made with the
 * name of the folder.
 */
class FolderBackend : public Tessellum::AppConfig::Backends::Backend
{
public:
    using Backend::Backend;

    static QStringList TypeKeys();
    QStringList getTypeKeys() const override;

    /*! Writes the files whose values have changed, and those that are missing. */
    bool saveAttributes() override;
    /*! False if there is no such folder. */
    bool loadAttributesCreateDataInternal(Tessellum::AppConfig::Attributes::AttributesCreateData &out,
                                          const Tessellum::Notification::CreatePoint &waitPoint) override;

private:
    QString filePath(const QString &name) const;
};
