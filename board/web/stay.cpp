#include "board/web/WebProgram.h"

#include <iostream>

namespace VeskLib::Board {

namespace {

// The smallest possible picture. A script can request it without leaving the page.
const char* const PICTURE =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"1\" height=\"1\"/>\n";

// Does nothing else, because finding the session marks it as used.
void handleStay(const Gui::FormInfo& /*form*/, Host::Response& response) {
    if (findRequestSession() == nullptr) {
        throw Host::makeLoginPage();
    }
    response.setContentType("image/svg+xml; charset=UTF-8");
    std::cout << PICTURE;
}

const WebProgram STAY = {"GET, HEAD", Host::makeMethodPage, handleStay};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::STAY);
}
