#pragma once

#include <appconfig/attributes/AttributeCreateData.h>
#include <appconfig/interfaces/AttributeInterface.h>
#include <appconfig/utils/AppConfigRepositoryEventThreadUser.h>
#include <appconfig/validation/ValidationContainer.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/synchronization/PropertyContainer.h>

namespace Tessellum::AppConfig::Attributes {

/*!
 * One configuration value in the tree.
 *
 * Made with MakeNode; only task bodies call setValue(). The node's lock guards the details; the functions of
 * the details run under it, so the functions of two attributes must not call each other. The mutex of the
 * validations is taken beneath no other lock.
 */
class Attribute : public Shared::Hierarchy::HierarchyNodeInstance,
                  public Interfaces::AttributeInterface,
                  public Validation::utils::ValidationContainer,
                  public Shared::PropertyContainer<AttributeCreateData::AttributeCreateDataDetails>,
                  public AppConfig::utils::AppConfigRepositoryEventThreadUser
{
    Q_OBJECT
public:
    using Details = AttributeCreateData::AttributeCreateDataDetails;

    /*! An attribute without a value, readable and writable. */
    explicit Attribute(const QString &name);
    Attribute(const QString &name, const QVariant &value);
    Attribute(const QString &name, const Details &details);

    bool isDeleteFlagSet() const override;
    bool isLocked() const override;
    bool hasValue() const override;
    bool getValue(QVariant &out, const int &metaType) const override;
    bool getLocalizedValue(QVariant &out,
                           const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                           const int &metaType) const override;
    QString getId() const override;
    QString getPath() const override;
    quint32 getAccess() const override;

    /*! Takes the attribute off the tree for good. */
    virtual bool markForDeletion();
    /*! Stores or hands on \a value; false if writing is not granted or the writer refuses. For task bodies.
     */
    virtual bool setValue(const QVariant &value);

    /*! Replaces the whole state under the node's lock; children, validations and place stay. */
    void setDetails(const Details &details);

private:
    struct Functions
    {
        AttributeCreateData::Reader reader;
        AttributeCreateData::Writer writer;
    };

    /*! What the details hold, without room for the functions that few attributes have. */
    struct State
    {
        explicit State(const Details &details);

        QVariant value;
        quint32 access;
        quint32 valueSource;
        std::unique_ptr<Functions> functions;
    };

    bool read(QVariant &out) const;

    State state;
};

/*! \a node as an attribute, empty where it is something else. Each read and each update asks this, and Qt's
 * cast costs a part of the one of the language over so many bases. */
template <class Node>
auto ToAttribute(std::shared_ptr<Node> node)
{
    using Target = std::conditional_t<std::is_const_v<Node>, const Attribute, Attribute>;
    const auto attribute = qobject_cast<Target *>(node.get());
    return attribute ? std::shared_ptr<Target>(std::move(node), attribute) : nullptr;
}

} // namespace Tessellum::AppConfig::Attributes
