#include <appdata/utils/WrappedElementRegistrationProvider.h>

namespace Tessellum::AppData::utils {

bool WrappedElementRegistrationProvider::registerElement(const CategoryType &type, const QString &detail,
                                                         const ParserCreator &parserCreator)
{
    return writing([&](Interfaces::DataElementRegistrationInterface &registration) {
        return registration.registerElement(type, detail, parserCreator);
    });
}

} // namespace Tessellum::AppData::utils
