#pragma once

#include <shared/TessellumExport.h>

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <functional>

namespace Tessellum::AppConfig::Attributes {

/*! The bits that say what an attribute grants. */
struct AttributeAccess
{
    enum Flag : quint32 { Read = 1, Write = 2 };
};

/*! Where the value of an attribute comes from. */
struct AttributeValueSource
{
    enum Source : quint32 { Stored = 0, Functions = 1 };
};

/*! Describes one attribute to create: a path beneath the parent, which may have several elements, and the
 * state. */
class TESSELLUM_EXPORT AttributeCreateData
{
public:
    using Reader = std::function<bool(const QVariant &stored, QVariant &out)>;
    using Writer = std::function<bool(QVariant &stored, const QVariant &in)>;

    /*!
     * The whole state of an attribute.
     *
     * The functions run under the lock of the attribute's node: the functions of two attributes must not call
     * each other, and neither may wait for a task on its own node.
     */
    struct AttributeCreateDataDetails
    {
        Reader reader;
        Writer writer;
        QVariant value;
        quint32 access = AttributeAccess::Read;
        quint32 valueSource = AttributeValueSource::Stored;
    };

    AttributeCreateData() = default;
    AttributeCreateData(const QString &attributeName, const AttributeCreateDataDetails &attributeDetails)
        : name(attributeName)
        , details(attributeDetails)
    { }
    AttributeCreateData(const AttributeCreateData &) = default;
    AttributeCreateData(AttributeCreateData &&) = default;
    AttributeCreateData &operator=(const AttributeCreateData &) = default;
    AttributeCreateData &operator=(AttributeCreateData &&) = default;
    virtual ~AttributeCreateData() = default;

    QString name;
    AttributeCreateDataDetails details;
};

using AttributesCreateData = QList<AttributeCreateData>;

} // namespace Tessellum::AppConfig::Attributes

Q_DECLARE_METATYPE(Tessellum::AppConfig::Attributes::AttributeCreateData)
Q_DECLARE_METATYPE(Tessellum::AppConfig::Attributes::AttributesCreateData)
