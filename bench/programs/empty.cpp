// The cost of a C++ program that does nothing.
#include <iostream>

int main() {
    return 0;
}
