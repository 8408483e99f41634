// The loader and the saver of JSON, without the repository: what is loaded must be creatable as it is, and
// the tree that came of it must be savable.
#include <appconfig/attributes/AttributeCreation.h>
#include <appconfig/backends/utils/JsonLoader.h>
#include <appconfig/backends/utils/JsonSaver.h>
#include <notification/utils/MakeNode.h>
#include <shared/hierarchy/HierarchyNodeInstance.h>
#include <shared/logging/LogHandler.h>

#include <cstdlib>
#include <sanitizer/lsan_interface.h>

using Shared::Hierarchy::HierarchyNodeInstance;
using Tessellum::AppConfig::Attributes::AttributesCreateData;
using Tessellum::AppConfig::Attributes::CreateAttributeInHierarchy;
using namespace Tessellum::AppConfig::Backends::utils;

namespace {

// Qt's parser loses the earlier value of a key that stands twice in an object; that leak is not ours to find.
QJsonDocument parse(const QByteArray &text)
{
    const __lsan::ScopedDisabler untracked;
    return QJsonDocument::fromJson(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    static const bool quiet
        = (Shared::Logging::LogHandler::SetLogLevel(Shared::Logging::LogMessageType::fatal), true);
    Q_UNUSED(quiet)
    const QByteArray text(reinterpret_cast<const char *>(bytes), static_cast<int>(size));
    AttributesCreateData attributes;
    const int loaded = JsonLoader(QStringLiteral("."), attributes).loadDocument(parse(text));
    if (loaded != attributes.size())
        std::abort();
    const auto root = Tessellum::Notification::utils::MakeNode<HierarchyNodeInstance>();
    for (const auto &attribute : qAsConst(attributes)) {
        if (!CreateAttributeInHierarchy(root, attribute))
            std::abort();
    }
    int saved = 0;
    JsonSaver saver;
    const QJsonObject object = saver.saveHierarchy(root, saved);
    // Several members of a document may mean one path, but no value may come of nothing.
    if (saved > loaded)
        std::abort();
    QJsonDocument(object).toJson();
    return 0;
}
