// The description of a unit, of any content: what is wrong in it gets its default, and values are still
// shown.
#include "FuzzInput.h"

#include <shared/conversion/Specification.h>

#include <QJsonDocument>

#include <algorithm>
#include <sanitizer/lsan_interface.h>

using namespace Shared::Conversion::UnitConversion;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    // Qt's parser loses the earlier value of a key that stands twice in an object.
    const __lsan::ScopedDisabler untracked;
    const auto document
        = QJsonDocument::fromJson(QByteArray(reinterpret_cast<const char *>(bytes), int(size)));
    const auto quantity
        = Specification::ParseSpecificationFromJson(QStringLiteral("fuzz"), document.object(), {});
    const UnitSpecification &unit = quantity.getUnitSpecification();
    Fuzz::Require(unit.enabledPrefixes.contains(unit.inputPrefix));
    const Specification::Options options{{QStringLiteral("clipping"), {}}};
    for (const double value : {0.0, -0.0045, 1234567.0, 1e308, -qInf(), qQNaN()}) {
        double clipped = value;
        quantity.clipToRange(clipped, options);
        Fuzz::Require(qIsNaN(value) || !unit.isValid()
                      || !(clipped < unit.minimumRange || clipped > unit.maximumRange));
        const auto &format = quantity.getFormatSpecificationFromValue(value, unit.inputPrefix);
        Fuzz::Require(FormatSpecification(format).isValid());
        const QString text = quantity.bestFitConversion(QLocale::c(), value, options);
        Fuzz::Require(text.endsWith(unit.unitString.trimmed()));
    }
    return 0;
}
