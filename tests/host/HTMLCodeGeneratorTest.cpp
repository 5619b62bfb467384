#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include "platform/host/base/idleWork.h"
#include "platform/host/base/platformException.h"
#include "platform/host/html/skeletons.h"
#include "tests/host/refusal.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <functional>
#include <iostream>

namespace VeskLib::Test {

using Gui::HTMLCodeGenerator;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string SKELETON = "/var/tmp/skeleton.txt";
const std::map<std::string, Gui::HTMLComponent*> NO_COMPONENTS;

}  // namespace

class HTMLCodeGeneratorHostTest : public BoardTest {
protected:
    // Prints the skeleton in a child process. Returns the output, or the refusal with its detail
    // code.
    static std::string print() {
        const ChildResult result = runInChild([] {
            try {
                HTMLCodeGenerator(SKELETON, &NO_COMPONENTS).printHTML();
            } catch (const PException& exception) {
                std::cout << refused(exception.getExceptionDetail());
            }
            return 0;
        });
        EXPECT_EQ(result.exitStatus, 0) << result.errors;
        return result.output;
    }

    static std::vector<std::string> traceLines() {
        const std::string path = boardFile("/var/log/trace.log");
        return exists(path) ? linesOf(readText(path)) : std::vector<std::string>();
    }
};

TEST_F(HTMLCodeGeneratorHostTest, rejectsMalformedSkeletonAndTracesPlace) {
    writeText(boardFile(SKELETON), "first line\n  {{no mark}}\n");
    EXPECT_EQ(print(), refused(Host::SKELETON_NOT_USABLE));
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr(SKELETON + ":2:3: not a mark")));
}

TEST_F(HTMLCodeGeneratorHostTest, tracesMissingSkeleton) {
    EXPECT_EQ(print(), refused(Host::SKELETON_NOT_USABLE));
    EXPECT_THAT(traceLines(), ElementsAre(HasSubstr(SKELETON)));
}

TEST_F(HTMLCodeGeneratorHostTest, rejectsLink) {
    writeText(boardFile("/var/tmp/other.txt"), "text");
    ASSERT_EQ(::symlink(boardFile("/var/tmp/other.txt").c_str(), boardFile(SKELETON).c_str()), 0);
    EXPECT_THAT(print(), HasSubstr("refused"));
}

TEST_F(HTMLCodeGeneratorHostTest, acceptsSkeletonUpToQuarterMegabyte) {
    const std::string largest(256 * 1024, 'x');
    writeText(boardFile(SKELETON), largest);
    EXPECT_EQ(print(), largest);
    writeText(boardFile(SKELETON), largest + "x");
    EXPECT_THAT(print(), HasSubstr("refused"));
}

TEST_F(HTMLCodeGeneratorHostTest, readsSkeletonOncePerProcess) {
    writeText(boardFile(SKELETON), "row;");
    const ChildResult result = runInChild([] {
        const HTMLCodeGenerator first(SKELETON, &NO_COMPONENTS);
        first.printHTML();
        writeText(boardFile(SKELETON), "changed;");
        first.printHTML();
        HTMLCodeGenerator(SKELETON, &NO_COMPONENTS).printHTML();
        return 0;
    });
    EXPECT_EQ(result.output, "row;row;row;");
}

TEST_F(HTMLCodeGeneratorHostTest, retriesMissingSkeleton) {
    const ChildResult result = runInChild([] {
        const HTMLCodeGenerator generator(SKELETON, &NO_COMPONENTS);
        EXPECT_THROW(generator.printHTML(), PException);
        writeText(boardFile(SKELETON), "here now");
        generator.printHTML();
        return 0;
    });
    EXPECT_EQ(result.output, "here now");
}

// Creates a shell, because it is read ahead first; without it, nothing is read ahead.
class SkeletonAheadTest : public HTMLCodeGeneratorHostTest {
protected:
    SkeletonAheadTest() { writeText(boardFile(Host::SHELL_SKELETON), "shell"); }
};

TEST_F(SkeletonAheadTest, readsPageDuringIdleTime) {
    writeText(boardFile(SKELETON), "row;");
    const ChildResult result = runInChild([] {
        const HTMLCodeGenerator generator(SKELETON, &NO_COMPONENTS);
        Host::doIdleWork();
        writeText(boardFile(SKELETON), "changed;");
        generator.printHTML();
        return 0;
    });
    EXPECT_EQ(result.output, "row;");
}

TEST_F(SkeletonAheadTest, readsOnlyFirstSkeletonAhead) {
    writeText(boardFile(SKELETON), "page;");
    const ChildResult result = runInChild([] {
        const HTMLCodeGenerator page(SKELETON, &NO_COMPONENTS);
        const HTMLCodeGenerator row("/var/tmp/row.txt", &NO_COMPONENTS);
        Host::doIdleWork();
        writeText(boardFile(SKELETON), "changed;");
        page.printHTML();
        return 0;
    });
    EXPECT_EQ(result.output, "page;");
}

TEST_F(SkeletonAheadTest, tracesProblemWhenPrinting) {
    writeText(boardFile(SKELETON), "{{no mark}}");
    const ChildResult result = runInChild([] {
        const HTMLCodeGenerator generator(SKELETON, &NO_COMPONENTS);
        Host::doIdleWork();
        std::cout << traceLines().size();
        EXPECT_THROW(generator.printHTML(), PException);
        std::cout << traceLines().size();
        return 0;
    });
    EXPECT_EQ(result.output, "01");
}

}  // namespace VeskLib::Test
