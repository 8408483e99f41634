#include <shared/synchronization/AtomicExchange.h>

namespace Shared {

template class AtomicExchange<bool>;

} // namespace Shared
