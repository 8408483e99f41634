#pragma once

#include <shared/TessellumExport.h>

#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Tessellum::AppConfig::Backends {

/*! What a backend works on, its description, and the bits of AttributeAccess that its attributes get. */
struct TESSELLUM_EXPORT BackendCreateDataDetails
{
    QVariant data;
    QString description;
    quint32 access = 3;
};

/*! Describes one backend to create. A backend is always readable: access 0 becomes 1, and 2 becomes 3. */
class TESSELLUM_EXPORT BackendCreateData
{
public:
    BackendCreateData() = default;
    BackendCreateData(const QString &backendType, const QString &backendName,
                      const BackendCreateDataDetails &details);
    BackendCreateData(const BackendCreateData &) = default;
    BackendCreateData(BackendCreateData &&) = default;
    BackendCreateData &operator=(const BackendCreateData &) = default;
    BackendCreateData &operator=(BackendCreateData &&) = default;
    virtual ~BackendCreateData() = default;

    QString type;
    QString name;
    QVariant data;
    QString description;
    quint32 access = 3;
};

} // namespace Tessellum::AppConfig::Backends

Q_DECLARE_METATYPE(Tessellum::AppConfig::Backends::BackendCreateData)
