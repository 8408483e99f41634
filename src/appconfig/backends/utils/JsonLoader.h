#pragma once

#include <appconfig/attributes/AttributeCreateData.h>

#include <QJsonDocument>

namespace Tessellum::AppConfig::Backends::utils {

/*!
 * Turns a JSON document into create data. One document, one thread; no lock.
 *
 * The walk is recursive: QJsonDocument reads no more than 1,024 levels.
 */
class JsonLoader
{
public:
    /*! The most elements of a path: as deep as a document may be, however many separators a key holds. */
    static constexpr int MaximumDepth = 1024;

    /*! Appends to \a target, whose paths are joined by \a pathSeparator; neither may change meanwhile. */
    JsonLoader(const QString &pathSeparator, Attributes::AttributesCreateData &target);

    /*! The number of attributes that came of \a document. */
    int loadDocument(const QJsonDocument &document);

private:
    int loadJsonObject(const QString &path, const QJsonObject &object);
    int loadJsonArray(const QString &path, const QJsonArray &array);
    int loadJsonValue(const QString &path, const QJsonValue &value);
    int addAttribute(const QString &path, const QVariant &value);
    QString elementPath(const QString &path, const QString &element) const;
    QString arrayPath(const QString &path) const;
    bool isUsablePath(const QString &path) const;

    const QString separator;
    Attributes::AttributesCreateData &attributes;
};

} // namespace Tessellum::AppConfig::Backends::utils
