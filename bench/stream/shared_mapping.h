// One object in memory mapped shared and anonymous: made before a fork, it is the same
// memory in the parent and in every child, so a child's callback can read what the
// parent's emulator thread writes and the parent can read what the child leaves behind.
#pragma once

#include <sys/mman.h>

#include <new>
#include <type_traits>

namespace ry::bench {

template <typename T>
class SharedMapping {
    static_assert(std::is_trivially_destructible_v<T>, "a child never runs destructors");

  public:
    SharedMapping() {
        void* memory =
            ::mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        object_ = new (memory) T{};
    }
    ~SharedMapping() { ::munmap(object_, sizeof(T)); }
    SharedMapping(const SharedMapping&) = delete;
    SharedMapping& operator=(const SharedMapping&) = delete;

    T& operator*() const { return *object_; }
    T* operator->() const { return object_; }

  private:
    T* object_ = nullptr;
};

}  // namespace ry::bench
