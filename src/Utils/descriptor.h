#pragma once
// A file descriptor that closes itself.

#include <unistd.h>

#include <utility>

class Descriptor
{
public:
    /// @param number  taken over; negative means none
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() { reset(-1); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const { return m_number; }
    /// Gives the descriptor away, open.
    int release() { return std::exchange(m_number, -1); }
    /// Closes what it holds and holds another, which was open before: of a pipe there is always an open end.
    /// @return what close() gave; 0 without anything to close
    int reset(int number)
    {
        const int former = std::exchange(m_number, number);
        return former >= 0 ? close(former) : 0;
    }

private:
    int m_number;
};
