#pragma once

#include <shared/TessellumExport.h>

#include <QMap>
#include <QStringList>

#include <memory>

namespace Shared::GuiContexts {

/*! The kinds of contexts that a user interface is made of. */
enum class Type : int {
    Versions = 1,
    Widgets = 2,
    Navigation = 3,
    Modules = 4,
    Settings = 5,
    Resources = 6,
    Applications = 7
};

/*! The text that stands for a kind in a path, empty for a number that is none. Any thread. */
TESSELLUM_EXPORT QString GetKeyOfType(const Type &type);

/*! Gives the elements of the path of each context. */
class TESSELLUM_EXPORT ReaderInterface
{
public:
    virtual ~ReaderInterface() = default;
    /*! Empty for a context that is not set. */
    virtual QStringList getGuiContextByType(const Type &type) const = 0;
    virtual bool isGuiContextSet(const Type &type) const = 0;
};

/*! Takes the elements of the path of each context. */
class TESSELLUM_EXPORT WriterInterface
{
public:
    virtual ~WriterInterface() = default;
    virtual void setGuiContextByType(const Type &type, const QStringList &context) = 0;
};

/*! Named lists of path elements, one for each kind. An object may be used by one thread at a time. */
class TESSELLUM_EXPORT GuiContexts : public ReaderInterface, public WriterInterface
{
public:
    QStringList getGuiContextByType(const Type &type) const override;
    bool isGuiContextSet(const Type &type) const override;
    void setGuiContextByType(const Type &type, const QStringList &context) override;

private:
    QMap<Type, QStringList> contexts;
};

/*! Each context is the prefix and the key of its kind, until it is set to something else. */
class TESSELLUM_EXPORT PrefixedGuiContexts : public GuiContexts
{
public:
    explicit PrefixedGuiContexts(const QStringList &prefixElements);
    /*! Sets the context to prefix and key again. */
    void updateContextByType(const Type &type);

private:
    const QStringList prefix;
};

/*! Each context that the reader has, with further elements behind it. */
class TESSELLUM_EXPORT SuffixedGuiContexts : public GuiContexts
{
public:
    /*! Takes all contexts that \a contextReader, which may be null, has at this moment. */
    SuffixedGuiContexts(const std::shared_ptr<const ReaderInterface> &contextReader,
                        const QStringList &suffixElements);
    /*! Takes what the reader has now; what it does not have stays as it is. */
    void updateContextByType(const Type &type);

private:
    const std::shared_ptr<const ReaderInterface> reader;
    const QStringList suffix;
};

} // namespace Shared::GuiContexts
