#pragma once

#include <shared/localization/CoreLocalizationInterface.h>

#include <QVariant>

#include <memory>

namespace Tessellum::AppConfig::utils {

/*!
 * Converts \a value to \a metaType in place. A text becomes a number under the default locale of \a
 * localization, then under its further locales; without one QVariant's own conversion serves. False leaves a
 * text unchanged.
 */
bool ConvertValue(QVariant &value, const std::shared_ptr<Core::CoreLocalizationInterface> &localization,
                  int metaType);

} // namespace Tessellum::AppConfig::utils
