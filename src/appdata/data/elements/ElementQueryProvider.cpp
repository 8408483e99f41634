#include <appdata/data/elements/Element.h>
#include <appdata/data/elements/ElementManipulationProvider.h>
#include <appdata/data/elements/ElementQueryProvider.h>
#include <appdata/data/elements/parsers/CallParser.h>
#include <shared/logging/FrameworkLog.h>

namespace Tessellum::AppData::Data::Elements {

using Shared::Logging::FrameworkLog;

quint64 ElementQueryProvider::getTimestamp() const
{
    return element->getTimestamp();
}

bool ElementQueryProvider::isActive() const
{
    return element->isActive();
}

QByteArray ElementQueryProvider::getRawData() const
{
    const auto parser = element->copyParser();
    if (!parser) {
        FrameworkLog().warning()
            << "ElementRawDataProvider::getRawData() no parser set, cannot obtain raw data";
        return {};
    }
    return Parsers::CallToRaw("ElementRawDataProvider::getRawData()", parser, getParsedData())
        .value_or(QByteArray());
}

std::shared_ptr<QVariant> ElementQueryProvider::getParsedData() const
{
    {
        const QReadLocker lock(&element->dataLock());
        const ElementData &data = std::as_const(*element).dataLocked();
        if (data.loadStatus == LoadStatus::Loaded)
            return data.parsedData;
    }
    const auto provider = element->getManipulationProvider();
    std::shared_ptr<QVariant> value;
    bool isChanged = false;
    if (provider) {
        // In one hold: an invalidation in between would take the value away again.
        const QWriteLocker lock(&element->dataLock());
        if (provider->performCommandLocked(ElementCommand::Load, isChanged))
            value = element->dataLocked().parsedData;
    }
    if (isChanged)
        provider->emitLoadChange(ElementCommand::Load);
    return value ? value : std::make_shared<QVariant>();
}

bool ElementQueryProvider::performQueryCommand(const ElementQueryCommand &command) const
{
    const QReadLocker lock(&element->dataLock());
    const ElementData &data = std::as_const(*element).dataLocked();
    switch (command) {
    case ElementQueryCommand::IsParsedDataNull:
        return data.parsedData->isNull();
    case ElementQueryCommand::IsLoaded:
        return data.loadStatus == LoadStatus::Loaded;
    case ElementQueryCommand::Unknown:
        break;
    }
    FrameworkLog().warning() << "ElementQueryProvider::performQueryCommand() called with unsupported command="
                             << static_cast<quint32>(command);
    return false;
}

} // namespace Tessellum::AppData::Data::Elements
