// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>
#include <utility>

namespace platform {

/// An owned file descriptor, closed on destruction. A negative value means no descriptor.
class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : descriptor_(descriptor)
    {
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor() { close(); }

    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }
    void close()
    {
        if (isOpen())
            ::close(std::exchange(descriptor_, -1));
    }

private:
    int descriptor_;
};

}
