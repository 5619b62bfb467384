#include "board/backend/runBackend.h"

#include "board/backend/BackendOptions.h"
#include "board/backend/BoardDescription.h"
#include "board/backend/BoardRoot.h"
#include "board/backend/BoardService.h"
#include "board/backend/ConfigurationStore.h"
#include "board/backend/FaultSwitches.h"
#include "board/backend/LoginQueue.h"
#include "board/backend/Server.h"
#include "board/backend/StopSignal.h"
#include "board/backend/log.h"
#include "board/backend/restartBackend.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/standardDescriptors.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/channel/hostNames.h"

#include <VeskLib/PException.h>

#include <unistd.h>

#include <climits>
#include <exception>
#include <map>
#include <string>
#include <string_view>

namespace VeskLib::Board {

namespace {

const int DONE = 0;
const int FAILED = 1;
const int MISUSED = 2;

void say(std::string_view text) {
    // Ignores errors, because the parent process may no longer be reading.
    static_cast<void>(!::write(STDOUT_FILENO, text.data(), text.size()));
}

// Answers a request, with the faults that the switches ask for.
Answer answerOrFail(BoardService& service, FaultSwitches& switches,
                    const Host::RequestFrame& request, const IsAwaited& isAwaited) {
    if (request.kind == Host::RequestKind::CONTROL) {
        return service.answer(request);
    }
    const FaultSwitches::Fault fault = switches.next(request.number);
    Answer answer =
        fault.refused ? Host::ReplyFrame{fault.errorCode, {}} : service.answer(request, isAwaited);
    answer.sentBytes = fault.sentBytes;
    return answer;
}

// If the line cannot be written, the back-end still runs, but will refuse changes.
void recordEvent(const char* name, const std::map<unsigned int, std::string>& configurations) {
    Host::AuditEvent event;
    event.event = name;
    event.after = configurations;
    try {
        Host::record(event);
    } catch (const PException&) {
        logLine("the audit log cannot be written");
    }
}

// Records the start with each partition's configuration. If the last back-end died during a
// restore, this shows whether it was carried out.
void recordStart(const ConfigurationStore& store, const BoardDescription& description) {
    std::map<unsigned int, std::string> configurations;
    for (unsigned int number = 0; number < description.partitions.size(); ++number) {
        if (description.isInstalled(number)) {
            configurations[number] = store.sumOf(number);
        }
    }
    recordEvent("start", configurations);
}
// Waiting logins leave enough connections for other clients.
static_assert(ConnectionLimits().connections >= 64 + LoginQueue::MOST_WAITING);

// Returns the machine's own name; empty if it has none.
std::string hostName() {
    char name[HOST_NAME_MAX + 1] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

Host::BoardProperties propertiesOf(const BoardDescription& description,
                                   const BackendOptions& options) {
    Host::BoardProperties properties;
    properties.maxPartitions = static_cast<unsigned int>(description.partitions.size());
    properties.name = description.name.empty() ? hostName() : description.name;
    properties.syslogSocket = description.syslogSocket;
    for (const User& user : description.users) {
        properties.users[user.name] = user.rights;
    }
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
    recordStart(store, description);
    FaultSwitches switches(options.allowFaults);
    BoardService service(description, store, switches, root.restoreLockPath());
    Server server(root.socketPath(),
                  [&](const Host::RequestFrame& request, const IsAwaited& isAwaited) {
                      return answerOrFail(service, switches, request, isAwaited);
                  });
    say("ready\n");
    server.run(stop.descriptor());
    switches.end();
    service.end();
    recordEvent("end", {});
}

}  // namespace

int runBackend(int argc, char** argv) {
    Host::occupyStandardDescriptors();
    try {
        BackendOptions options;
        std::string error;
        if (!readOptions(argc, argv, options, error)) {
            logLine(error + " (see --help)");
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
