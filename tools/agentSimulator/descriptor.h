#pragma once

#include <unistd.h>
#include <utility>

namespace agentSimulator
{

/// Owns one file descriptor and closes it; -1 means none.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    /// The old descriptor is closed after the new one is held: between two rounds of a reader one is always open.
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        other.reset();
        return *this;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() { reset(); }

    int get() const { return m_number; }
    explicit operator bool() const { return m_number >= 0; }
    void reset()
    {
        if (m_number >= 0)
            close(std::exchange(m_number, -1));
    }

private:
    int m_number = -1;
};

} // namespace agentSimulator
