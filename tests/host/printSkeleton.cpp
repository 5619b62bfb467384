#include "tests/host/printSkeleton.h"

#include "platform/host/html/Skeleton.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/printedBy.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::Skeleton;
using Host::SkeletonError;

std::string print(const std::string& source, const Components& components) {
    const Skeleton skeleton(source);
    return printedBy([&] { skeleton.print(components); });
}

std::string printIn(const std::string& language, const std::string& source) {
    return printedIn(language, [&source] { Skeleton(source).print({}); });
}

std::string printedIn(const std::string& language, const std::function<void()>& work) {
    const ChildResult result = runInChild(
        [&work] {
            work();
            return 0;
        },
        {.environment = {{"HTTP_ACCEPT_LANGUAGE", language}}, .input = {}});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return result.output;
}

std::string problemOf(const std::string& source) {
    try {
        const Skeleton skeleton(source);
    } catch (const SkeletonError& error) {
        return std::to_string(error.line) + ":" + std::to_string(error.column) + " " +
               error.problem;
    }
    return "";
}

}  // namespace VeskLib::Test
