#pragma once

#include <VeskLib/Gui/CGIAuthority.h>
#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/trace/VeskTrace.h>

#include <string>

namespace VeskLib::Gui {

// The life of one request. The program carries the constructor and the destructor
// (main/AbstractMain.cpp), the platform everything else.
class AbstractMain {
public:
    // Takes the process-wide FormInfo, making it when there is none, and ends with getCookie().
    AbstractMain();
    AbstractMain(const AbstractMain&) = delete;
    AbstractMain& operator=(const AbstractMain&) = delete;

    // Deletes the request channel, then the message catalogue.
    virtual ~AbstractMain();

    // Shows the platform's error page with `message` and `code` and ends the request.
    virtual void errorExit(std::string message, int code);

    // Handles the request; the result becomes the program's exit status.
    virtual int individualProc() = 0;

    // Runs the request: calls individualProc() once and returns its result. Everything printed
    // leaves as one response when the work is done. A PException that gets here becomes the error
    // page and a trace line.
    int exec();

protected:
    // Fills `sessionText` and `messageSet` from the request's cookies and headers.
    void getCookie();

    // Checks the login session and fills `authority`. Without a valid session, ends the request
    // with the error page if `showError` is set; otherwise returns and leaves `authority`
    // unchanged.
    void guiCheckSession(bool showError);

    // Shows the platform's error page and ends the request; not meant to return.
    void errorExit(std::string title, std::string message);

    trace::VeskTrace trace;
    FormInfo* formInfo;       // not owned
    CGIRequester* requester;  // owned; made by individualProc()
    MessageMgr* messageMgr;   // owned; made by individualProc()
    int functionId;
    int messageSet;
    CGIAuthority authority;
    std::string sessionText;

    // State of a board's library, which the program only initialises and the host platform does not
    // use.
    bool requestEnded;
    int responseStatus;
};

}  // namespace VeskLib::Gui
