// Answers with a fixed page and does nothing else.
#include "page.h"

#include <iostream>

int main() {
    std::cout << "Content-Type: text/html; charset=UTF-8\r\nContent-Length: " << sizeof PAGE - 1
              << "\r\n\r\n"
              << PAGE << std::flush;
    return 0;
}
