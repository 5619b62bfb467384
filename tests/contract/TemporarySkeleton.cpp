#include "tests/contract/TemporarySkeleton.h"

#include "tests/support/files.h"

#include <VeskLib/getCGIPath.h>

#include <unistd.h>

#include <cstdio>

namespace VeskLib::Test {

namespace {

std::string makePath() {
    static int count = 0;
    return "/var/tmp/skeleton_test_" + std::to_string(::getpid()) + "_" + std::to_string(++count) +
           ".txt";
}

}  // namespace

TemporarySkeleton::TemporarySkeleton(const std::string& content) : boardPath(makePath()) {
    writeText(getCGIPath(boardPath.c_str()), content);
}

TemporarySkeleton::~TemporarySkeleton() {
    static_cast<void>(std::remove(getCGIPath(boardPath.c_str()).c_str()));
}

}  // namespace VeskLib::Test
