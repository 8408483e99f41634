#pragma once

#include <QString>

#include <elfutils/libdwfl.h>
#include <vector>

namespace Shared::Foundation::Platform {

/*!
 * The functions of a module by their addresses. libdw looks at every symbol for each question; this sorts
 * them once. Valid as long as the module is.
 */
class SymbolTable
{
public:
    explicit SymbolTable(Dwfl_Module *module);

    /*! The name as it is written in the source, empty where no function has this address. */
    QString functionAt(GElf_Addr address) const;

private:
    struct Symbol
    {
        GElf_Addr begin;
        GElf_Xword size; /*!< 0 where it is not known */
        const char *name;
    };
    std::vector<Symbol> symbols;
};

} // namespace Shared::Foundation::Platform
