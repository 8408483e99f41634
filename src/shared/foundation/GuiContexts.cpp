#include <shared/foundation/GuiContexts.h>

namespace Shared::GuiContexts {

namespace {

const QMap<Type, QString> &Keys()
{
    static const QMap<Type, QString> keys{
        {Type::Versions, QStringLiteral("versions")},        {Type::Widgets, QStringLiteral("widgets")},
        {Type::Navigation, QStringLiteral("navigation")},    {Type::Modules, QStringLiteral("modules")},
        {Type::Settings, QStringLiteral("settings")},        {Type::Resources, QStringLiteral("resources")},
        {Type::Applications, QStringLiteral("applications")}};
    return keys;
}

template <class Contexts>
void UpdateAll(Contexts &contexts)
{
    for (auto key = Keys().keyBegin(); key != Keys().keyEnd(); ++key)
        contexts.updateContextByType(*key);
}

} // namespace

QString GetKeyOfType(const Type &type)
{
    return Keys().value(type);
}

QStringList GuiContexts::getGuiContextByType(const Type &type) const
{
    return contexts.value(type);
}

bool GuiContexts::isGuiContextSet(const Type &type) const
{
    return contexts.contains(type);
}

void GuiContexts::setGuiContextByType(const Type &type, const QStringList &context)
{
    contexts.insert(type, context);
}

PrefixedGuiContexts::PrefixedGuiContexts(const QStringList &prefixElements)
    : prefix(prefixElements)
{
    UpdateAll(*this);
}

void PrefixedGuiContexts::updateContextByType(const Type &type)
{
    const QString key = GetKeyOfType(type);
    if (!key.isEmpty())
        setGuiContextByType(type, prefix + QStringList{key});
}

SuffixedGuiContexts::SuffixedGuiContexts(const std::shared_ptr<const ReaderInterface> &contextReader,
                                         const QStringList &suffixElements)
    : reader(contextReader)
    , suffix(suffixElements)
{
    UpdateAll(*this);
}

void SuffixedGuiContexts::updateContextByType(const Type &type)
{
    if (reader && reader->isGuiContextSet(type))
        setGuiContextByType(type, reader->getGuiContextByType(type) + suffix);
}

} // namespace Shared::GuiContexts
