// Simulates failures of a running back-end, for tests and demonstrations.

#include "board/control/describeFailure.h"
#include "platform/host/base/flushOutput.h"
#include "platform/host/base/standardDescriptors.h"
#include "platform/host/channel/Channel.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using namespace VeskLib::Host;
using VeskLib::Board::describeFailure;

enum Status { DONE = 0, FAILED = 1, USAGE = 2 };

// Sends an order and prints the reply. Returns the exit status.
int send(const std::string& order) {
    RequestFrame request;
    request.kind = RequestKind::CONTROL;
    request.payload.assign(order.begin(), order.end());
    ReplyFrame reply;
    const int code = Channel().exchange(request, reply);
    if (code == CHANNEL_BROKEN && order.starts_with("die")) {
        return DONE;  // as ordered, it died without a reply
    }
    if (code != 0) {
        std::cerr << "boardctl: " << describeFailure(code) << " (code " << code << ")\n";
        return FAILED;
    }
    std::cout << std::string(reply.payload.begin(), reply.payload.end());
    return DONE;
}

// Returns the exit status, which is FAILED if the output could not be written.
int endWith(int status) {
    return flushOutput("boardctl") ? status : FAILED;
}

// The orders. Each is a subcommand that sets `order` to the text for the back-end.
class Orders {
public:
    explicit Orders(CLI::App& application) {
        addStatus(application);
        addRefuse(application);
        addSlow(application);
        addSilent(application);
        addTorn(application);
        addDie(application);
        addPartition(application);
        addReset(application);
        for (CLI::App* const command : application.get_subcommands({})) {
            command->footer("The board's root is given before the order: boardctl --root DIR " +
                            command->get_name() + ", or in BOARD_ROOT.");
        }
    }

    const std::string& words() const { return order; }

private:
    void addTimes(CLI::App* command) {
        command->add_option("--times", times, "The number of requests that are affected (1)")
            ->check(CLI::PositiveNumber);
    }

    void addStatus(CLI::App& application) {
        application.add_subcommand("status", "Shows which faults are switched on")
            ->callback([this] { order = "status"; });
    }

    void addRefuse(CLI::App& application) {
        CLI::App* const command = application.add_subcommand(
            "refuse", "Refuses the next requests of a given number with an error code");
        command->add_option("REQUEST", request, "The request number, such as 0x020100A3")
            ->required();
        command
            ->add_option("CODE", code,
                         "The error code, such as 1047; 0 reports success without doing anything")
            ->required();
        addTimes(command);
        command->callback([this] {
            order = "refuse " + std::to_string(request) + " " + std::to_string(code) + " " +
                    std::to_string(times);
        });
    }

    void addSlow(CLI::App& application) {
        CLI::App* const command = application.add_subcommand(
            "slow", "Delays the next requests before they are carried out");
        command->add_option("MILLISECONDS", milliseconds, "The delay")->required();
        addTimes(command);
        command->callback([this] {
            order = "slow " + std::to_string(milliseconds) + " " + std::to_string(times);
        });
    }

    void addSilent(CLI::App& application) {
        CLI::App* const command = application.add_subcommand(
            "silent", "Carries out the next requests without ever replying");
        addTimes(command);
        command->callback([this] { order = "silent " + std::to_string(times); });
    }

    void addTorn(CLI::App& application) {
        CLI::App* const command = application.add_subcommand(
            "torn", "Closes the connection after some bytes of the next replies");
        command->add_option("BYTES", bytes, "The number of bytes of the frame that are sent")
            ->required();
        addTimes(command);
        command->callback(
            [this] { order = "torn " + std::to_string(bytes) + " " + std::to_string(times); });
    }

    void addDie(CLI::App& application) {
        CLI::App* const command = application.add_subcommand(
            "die", "Crashes at once, and restarts with the state on the disk");
        command->add_option("--back-in", milliseconds, "Milliseconds until the restart (0)");
        command->callback([this] { order = "die " + std::to_string(milliseconds); });
    }

    void addPartition(CLI::App& application) {
        CLI::App* const command =
            application.add_subcommand("partition", "Switches a partition on or off");
        command->add_option("NUMBER", partition, "The number of an installed partition")
            ->required();
        command->add_option("STATE", state, "on or off")
            ->required()
            ->check(CLI::IsMember({"on", "off"}));
        command->callback(
            [this] { order = "partition " + std::to_string(partition) + " " + state; });
    }

    void addReset(CLI::App& application) {
        application.add_subcommand("reset", "Switches all faults off")->callback([this] {
            order = "reset";
        });
    }

    unsigned int request = 0;
    unsigned int code = 0;
    unsigned int times = 1;
    unsigned int milliseconds = 0;
    unsigned int bytes = 0;
    unsigned int partition = 0;
    std::string state;
    std::string order;
};

int run(int argumentCount, char** arguments) {
    CLI::App application(
        "Simulates failures of a running back-end, for tests and demonstrations. A restart of the\n"
        "back-end switches all faults off.",
        "boardctl");
    application.require_subcommand(1);
    application.footer(
        "The board's root is the folder that was given to ./serve as --root. Without --root it is\n"
        "taken from the environment variable BOARD_ROOT. docs/wire-formats.md lists the request\n"
        "numbers. Each order has its own --help.\n\n"
        "Exit status: 0 done; 1 the back-end cannot be reached or refuses, or the answer\n"
        "could not be printed; 2 wrong usage.");
    std::string root;
    application.add_option("--root", root, "The board's root, as given to ./serve")
        ->envname("BOARD_ROOT")
        ->required();
    const Orders orders(application);
    try {
        application.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return endWith(application.exit(error) == 0 ? DONE : USAGE);
    }
    ::setenv("BOARD_ROOT", root.c_str(), 1);
    return endWith(send(orders.words()));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    occupyStandardDescriptors();
    // Ignored, so that a closed pipe is reported like a full disk.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::cerr << "boardctl: " << error.what() << '\n';
        return FAILED;
    }
}
