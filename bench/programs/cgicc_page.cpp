// Answers with a fixed page, using Debian's CGI library for C++.
#include "page.h"

#include <cgicc/Cgicc.h>
#include <cgicc/HTTPHTMLHeader.h>

#include <iostream>

int main() {
    const cgicc::Cgicc request;
    std::cout << cgicc::HTTPHTMLHeader() << PAGE << std::flush;
    return 0;
}
