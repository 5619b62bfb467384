#include "board/backend/runBackend.h"

#include "board/backend/BackendOptions.h"
#include "board/backend/BoardDescription.h"
#include "board/backend/BoardRoot.h"
#include "board/backend/BoardService.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"
#include "board/backend/Server.h"
#include "board/backend/StopSignal.h"
#include "board/backend/log.h"
#include "board/backend/restartBackend.h"
#include "platform/host/base/standardDescriptors.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/channel/hostNames.h"

#include <unistd.h>

#include <exception>
#include <string_view>

namespace VeskLib::Board {

namespace {

const int DONE = 0;
const int FAILED = 1;
const int MISUSED = 2;

void say(std::string_view text) {
    // Whoever started us may have stopped listening; that changes nothing.
    static_cast<void>(!::write(STDOUT_FILENO, text.data(), text.size()));
}

// Answers a request as the fault switches want it.
Answer answerOrFail(BoardService& service, FaultSwitches& switches,
                    const Host::RequestFrame& request) {
    if (request.kind == Host::RequestKind::CONTROL) {
        return service.answer(request);
    }
    const FaultSwitches::Fault fault = switches.next(request.number);
    Answer answer = fault.refused ? Host::ReplyFrame{fault.errorCode, {}} : service.answer(request);
    answer.sentBytes = fault.sentBytes;
    return answer;
}

Host::BoardProperties propertiesOf(const BoardDescription& description,
                                   const BackendOptions& options) {
    Host::BoardProperties properties;
    properties.maxPartitions = static_cast<unsigned int>(description.partitions.size());
    properties.hosts = Host::loopbackNames();
    for (const std::vector<std::string>* names : {&description.hostNames, &options.hosts}) {
        properties.hosts.insert(properties.hosts.end(), names->begin(), names->end());
    }
    return properties;
}

void serve(const BackendOptions& options) {
    const StopSignal stop;
    const BoardDescription description = loadBoardDescription(options.boardFile);
    const BoardRoot root(options.root);
    ConfigurationStore store(root.statePath(), description);
    root.publishProperties(propertiesOf(description, options));
    FaultSwitches switches;
    BoardService service(description, store, switches, root.restoreLockPath());
    Server server(root.socketPath(), [&](const Host::RequestFrame& request) {
        return answerOrFail(service, switches, request);
    });
    say("ready\n");
    server.run(stop.descriptor());
    switches.end();
}

}  // namespace

int runBackend(int argc, char** argv) {
    Host::occupyStandardDescriptors();
    try {
        BackendOptions options;
        std::string error;
        if (!readOptions(argc, argv, options, error)) {
            logLine(error + " (--help tells more)");
            return MISUSED;
        }
        if (options.help) {
            say(USAGE);
            return DONE;
        }
        rememberArguments(argv);
        waitForReturn();
        serve(options);
        return DONE;
    } catch (const std::exception& failure) {
        logFailure("", failure);
        return FAILED;
    }
}

}  // namespace VeskLib::Board
