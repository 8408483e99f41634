#pragma once

#include <appconfig/interfaces/BackendInterface.h>

#include <memory>

namespace Tessellum::AppConfig::Backends {

class Backend;

/*! A caller's weak handle on a backend; an expired one answers with empty texts, an empty list and false. */
class TESSELLUM_EXPORT BackendReference : public Interfaces::BackendInterface
{
public:
    explicit BackendReference(const std::weak_ptr<Backend> &backend);

    QString getType() const override;
    QString getDescription() const override;
    QString getId() const override;
    QStringList getTypeKeys() const override;
    bool setDescription(const QString &description) override;

private:
    std::weak_ptr<Backend> backend;
};

} // namespace Tessellum::AppConfig::Backends
