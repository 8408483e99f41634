#include <shared/hierarchy/HierarchyStringPath.h>

using Shared::Synchronization::ScopedLock;

namespace Shared::Hierarchy {

namespace {

// What the regular expression \w means, without a regular expression that threads could not share.
bool isWordCharacter(const QChar &character)
{
    return character.isLetterOrNumber() || character.isMark() || character == QLatin1Char('_');
}

bool isWord(const QString &element)
{
    return !element.isEmpty() && std::all_of(element.cbegin(), element.cend(), isWordCharacter);
}

} // namespace

HierarchyStringPath::HierarchyStringPath(const std::shared_ptr<Base> &parentPath,
                                         const QString &separatorText, const QString &id)
    : Base(parentPath, separatorText, id)
{ }

HierarchyStringPath::HierarchyStringPath(const HierarchyStringPath &other) = default;

HierarchyStringPath::~HierarchyStringPath() = default;

QString HierarchyStringPath::at(const int &index) const
{
    return split().value(index);
}

int HierarchyStringPath::size() const
{
    return split().size();
}

QStringList HierarchyStringPath::split() const
{
    return SplitPath(getFullPath(), getSeparator());
}

bool HierarchyStringPath::isValid() const
{
    return IsValidPath(getFullPath(), getSeparator());
}

bool HierarchyStringPath::isEmpty() const
{
    return IsEmptyPath(getFullPath(), getSeparator());
}

QStringList HierarchyStringPath::getPathElementsFromPath(const QString &path) const
{
    return SplitPath(path, getSeparator());
}

void HierarchyStringPath::getPathElementsFromPath(QString &lastElement, QString &parentPath) const
{
    QStringList elements = split();
    lastElement = elements.isEmpty() ? QString() : elements.takeLast();
    parentPath = JoinPath(elements, getSeparator());
}

QString HierarchyStringPath::getPathFromPathElements(const QStringList &elements) const
{
    return JoinPath(elements, getSeparator());
}

QStringList HierarchyStringPath::SplitPath(const QString &path, const QString &separator)
{
    return path.split(separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
}

QString HierarchyStringPath::JoinPath(const QStringList &elements, const QString &separator)
{
    return elements.join(separator);
}

bool HierarchyStringPath::IsEmptyPath(const QString &path, const QString &separator)
{
    return SplitPath(path, separator).isEmpty();
}

bool HierarchyStringPath::IsValidPath(const QString &path, const QString &separator)
{
    const QStringList elements = SplitPath(path, separator);
    return !elements.isEmpty() && std::all_of(elements.cbegin(), elements.cend(), isWord);
}

QString HierarchyStringPath::RemoveBack(const HierarchyStringPath &path, const int &count)
{
    const QStringList elements = path.split();
    return count < elements.size()
        ? JoinPath(elements.mid(0, elements.size() - std::max(count, 0)), path.getSeparator())
        : QString();
}

QString HierarchyStringPath::RemoveFront(const HierarchyStringPath &path, const int &count)
{
    const QStringList elements = path.split();
    return count < elements.size() ? JoinPath(elements.mid(std::max(count, 0)), path.getSeparator())
                                   : QString();
}

} // namespace Shared::Hierarchy
