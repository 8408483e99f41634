#include <shared/foundation/JsonFile.h>
#include <shared/foundation/RapidJsonValidator.h>
#include <shared/logging/FrameworkLog.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

namespace Shared {

namespace {

using Logging::FrameworkLog;

/*! Qt discourages its binary form, but files of it are about. */
QJsonDocument FromBinary(const QByteArray &bytes)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return QJsonDocument::fromBinaryData(bytes);
    QT_WARNING_POP
}

QJsonDocument FromStructure(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::QJsonDocument:
        return value.toJsonDocument();
    case QMetaType::QJsonObject:
        return QJsonDocument(value.toJsonObject());
    case QMetaType::QJsonArray:
        return QJsonDocument(value.toJsonArray());
    default:
        return QJsonDocument::fromVariant(value);
    }
}

} // namespace

QJsonDocument LoadJsonFromFile(const QFileInfo &file, QJsonParseError *error)
{
    const QString path = file.absoluteFilePath();
    QJsonParseError parseError{0, QJsonParseError::NoError};
    if (error)
        *error = parseError;
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly)) {
        FrameworkLog().warning() << "Shared::LoadJsonFromFile could not open file=" << path;
        return {};
    }
    const QByteArray bytes = source.readAll();
    QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        FrameworkLog().warning() << "Shared::LoadJsonFromFile failed in JSON conversion of file=" << path
                                 << " with Error=" << parseError.errorString()
                                 << " Offset=" << parseError.offset;
        document = FromBinary(bytes);
        if (document.isNull()) {
            FrameworkLog().warning() << "Shared::LoadJsonFromFile failed in binary JSON conversion of file="
                                     << path;
        }
    }
    if (error)
        *error = parseError;
    return document;
}

QJsonDocument ConvertVariantToJsonDocument(const QVariant &value, QJsonParseError *error)
{
    QJsonParseError parseError{0, QJsonParseError::NoError};
    QJsonDocument document;
    if (value.userType() == QMetaType::QByteArray || value.userType() == QMetaType::QString) {
        document = QJsonDocument::fromJson(value.toString().toUtf8(), &parseError);
    } else {
        document = FromStructure(value);
        if (document.isNull())
            parseError.error = QJsonParseError::IllegalValue;
    }
    if (error)
        *error = parseError;
    return document;
}

bool JsonValidation::ValidateJsonAgainstSchema(const QJsonDocument &document, const QJsonDocument &schema)
{
    RapidJsonValidator validator;
    if (validator.validate(document.toJson(), schema.toJson()))
        return true;
    FrameworkLog().warning() << "ValidateJsonAgainstSchema() validation failed with errors: "
                             << validator.getErrors().join(QLatin1Char('\n'));
    return false;
}

} // namespace Shared
