#include "transport/transport_table.h"

#include <atomic>

namespace RYSDK::transport {
namespace {

const TransportTable kLibraryTable = {
#define RY_TRANSPORT_POINTER(name) &::name,
    RY_TRANSPORT_FUNCTIONS(RY_TRANSPORT_POINTER)
#undef RY_TRANSPORT_POINTER
};

std::atomic<const TransportTable*> installedTable{&kLibraryTable};

}  // namespace

const TransportTable& Transport() noexcept {
    return *installedTable.load(std::memory_order_acquire);
}

const TransportTable& DefaultTransport() noexcept {
    return kLibraryTable;
}

void InstallTransport(const TransportTable* table) noexcept {
    installedTable.store(table != nullptr ? table : &kLibraryTable, std::memory_order_release);
}

}  // namespace RYSDK::transport
