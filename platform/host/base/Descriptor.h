#pragma once

namespace VeskLib::Host {

// Owns an open descriptor, or none when the number is negative. Its end closes it and keeps errno,
// so that the reason of an earlier failure is not lost.
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
