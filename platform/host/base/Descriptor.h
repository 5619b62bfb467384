#pragma once

namespace VeskLib::Host {

// Owns an open file descriptor, or none if the number is negative. The destructor closes it and
// leaves errno unchanged, so that callers can still read the cause of an earlier failure.
class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    int get() const { return number; }
    bool isOpen() const { return number >= 0; }

private:
    const int number;
};

}  // namespace VeskLib::Host
