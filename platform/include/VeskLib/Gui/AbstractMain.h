#pragma once

#include <VeskLib/Gui/CGIAuthority.h>
#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/trace/VeskTrace.h>

#include <string>

namespace VeskLib::Gui {

// Handles one request. The program implements the constructor and the destructor
// (main/AbstractMain.cpp), the platform everything else.
class AbstractMain {
public:
    // Uses the process-wide FormInfo, creating it if there is none, and then calls getCookie().
    AbstractMain();
    AbstractMain(const AbstractMain&) = delete;
    AbstractMain& operator=(const AbstractMain&) = delete;

    // Deletes the request channel, then the message catalogue.
    virtual ~AbstractMain();

    // Shows the platform's error page with `message` and `code`, and ends the request.
    virtual void errorExit(std::string message, int code);

    // Handles the request. The result becomes the program's exit status.
    virtual int individualProc() = 0;

    // Calls individualProc() once and returns its result. Sends everything that was printed as one
    // response at the end. If a PException is thrown, sends the error page instead and writes a
    // trace line.
    int exec();

protected:
    // Sets `sessionText` and `messageSet` from the request's cookies and headers.
    void getCookie();

    // Checks the login session and fills `authority`. Without a valid session, ends the request
    // with the error page if `showError` is set; otherwise returns and leaves `authority`
    // unchanged.
    void guiCheckSession(bool showError);

    // Shows the platform's error page and ends the request. Should not return.
    void errorExit(std::string title, std::string message);

    trace::VeskTrace trace;
    FormInfo* formInfo;       // not owned
    CGIRequester* requester;  // owned; created by individualProc()
    MessageMgr* messageMgr;   // owned; created by individualProc()
    int functionId;
    int messageSet;
    CGIAuthority authority;
    std::string sessionText;

    // State of a board's library. The program only initialises it; the host platform does not use
    // it.
    bool requestEnded;
    int responseStatus;
};

}  // namespace VeskLib::Gui
