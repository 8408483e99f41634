#include <shared/foundation/platform/SymbolTable.h>

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace Shared::Foundation::Platform {

namespace {

QString Demangled(const char *name)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return QString::fromUtf8(text ? text.get() : name);
}

} // namespace

SymbolTable::SymbolTable(Dwfl_Module *module)
{
    const int count = dwfl_module_getsymtab(module);
    for (int index = 0; index < count; ++index) {
        GElf_Sym symbol;
        GElf_Addr address = 0;
        const char *const name
            = dwfl_module_getsym_info(module, index, &symbol, &address, nullptr, nullptr, nullptr);
        const auto type = GELF_ST_TYPE(symbol.st_info);
        const bool isCode = type == STT_FUNC || type == STT_GNU_IFUNC;
        if (name && *name && isCode && symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS)
            symbols.push_back({address, symbol.st_size, name});
    }
    // Of several names for one address the one with a size tells most, and comes last.
    std::sort(symbols.begin(), symbols.end(), [](const Symbol &left, const Symbol &right) {
        return left.begin != right.begin ? left.begin < right.begin : left.size < right.size;
    });
}

QString SymbolTable::functionAt(GElf_Addr address) const
{
    auto next = std::upper_bound(symbols.begin(), symbols.end(), address,
                                 [](GElf_Addr value, const Symbol &symbol) { return value < symbol.begin; });
    if (next == symbols.begin())
        return {};
    const Symbol &symbol = *--next;
    const bool inside = symbol.size == 0 || address - symbol.begin < symbol.size;
    return inside ? Demangled(symbol.name) : QString();
}

} // namespace Shared::Foundation::Platform
