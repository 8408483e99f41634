#include <appdata/DataTypeStrings.h>
#include <shared/logging/FrameworkLog.h>

#include <array>

namespace Tessellum::AppData {

using Data::Entries::EntryCategory;
using Shared::Logging::FrameworkLog;

namespace {

/*! Texts by number. */
constexpr std::array categoryTexts{"", "custom", "text", "binary", "unit", "float"};
constexpr std::array persistenceTexts{"unknown", "persistent", "volatile"};
constexpr std::array loadStatusTexts{"unknown", "currently_loading", "currently_unloading", "loaded",
                                     "not_loaded"};

template <class Texts, class Enum>
QString textOf(const Texts &texts, Enum value)
{
    const auto number = static_cast<std::size_t>(value);
    return number < texts.size() ? QString::fromLatin1(texts[number]) : QString();
}

template <class Enum, class Texts>
Enum valueOf(const Texts &texts, const QString &text)
{
    for (std::size_t number = 1; number < texts.size(); ++number) {
        if (text == QLatin1String(texts[number]))
            return static_cast<Enum>(number);
    }
    return Enum::Unknown;
}

} // namespace

QString ConvertDataEntryCategoryToString(const EntryCategory &category)
{
    const QString type = textOf(categoryTexts, category.getType());
    if (type.isEmpty()) {
        FrameworkLog().warning() << "ConvertDataEntryCategoryToString() callled with unkown category="
                                 << static_cast<quint32>(category.getType());
        return type;
    }
    const QString detail = category.getDetail();
    return detail.isEmpty() ? type : (type + QLatin1Char(':') + detail).toLower();
}

EntryCategory ParseDataEntryCategoryFromString(const QString &text, bool *ok)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const QString typeText = (colon < 0 ? text : text.left(colon)).toLower();
    const auto type = valueOf<CategoryType>(categoryTexts, typeText);
    if (type == CategoryType::Unknown) {
        FrameworkLog().warning() << "ParseDataEntryCategoryFromString() callled with unkown category string="
                                 << text;
    }
    if (ok)
        *ok = type != CategoryType::Unknown;
    return {type, colon > 0 ? text.mid(colon + 1) : QString()};
}

QString ConvertDataEntryLoadStatusToString(const LoadStatus &status)
{
    const QString text = textOf(loadStatusTexts, status);
    if (text.isEmpty()) {
        FrameworkLog().warning() << "ConvertDataEntryLoadStatusToString() callled with unkown load status="
                                 << static_cast<quint32>(status);
    }
    return text;
}

QString ConvertPersistenceTypeToString(const PersistenceType &type)
{
    const QString text = textOf(persistenceTexts, type);
    if (text.isEmpty()) {
        // The wire format writes "unknown" for an empty text, so that this line is the only trace.
        FrameworkLog().critical() << "ConvertPersistenceTypeToString() callled with unkown persistence type="
                                  << static_cast<quint32>(type);
    }
    return text;
}

PersistenceType ParseStringToPersistenceType(const QString &text)
{
    const auto type = valueOf<PersistenceType>(persistenceTexts, text.toLower());
    if (type == PersistenceType::Unknown) {
        FrameworkLog().warning()
            << "ParseStringToPersistenceType() callled with unkown persistence type string=" << text;
    }
    return type;
}

} // namespace Tessellum::AppData
