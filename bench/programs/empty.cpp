// What every C++ program pays before it does anything.
#include <iostream>

int main() {
    return 0;
}
