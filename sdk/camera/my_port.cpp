#include "camera/my_port.h"

#include "transport/transport_table.h"

namespace RYSDK::camera {

void MyPort::Read(void* buffer, int64_t address, int64_t length) {
    const TransportHandle device = handle_.load();
    if (device == nullptr || length < 0)
        return;
    size_t size = static_cast<size_t>(length);
    transport::Transport().GCReadPort(device, static_cast<uint64_t>(address), buffer, &size);
}

void MyPort::Write(const void* buffer, int64_t address, int64_t length) {
    const TransportHandle device = handle_.load();
    if (device == nullptr || length < 0)
        return;
    size_t size = static_cast<size_t>(length);
    transport::Transport().GCWritePort(device, static_cast<uint64_t>(address), buffer, &size);
}

}  // namespace RYSDK::camera
