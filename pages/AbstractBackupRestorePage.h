#pragma once

#include "data/PrimitiveTypeArray.h"
#include "html/HTMLItem.h"

#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/CommonDefaultPage.h>
#include <VeskLib/Gui/FormInfo.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The common base of the screen's pages: the request channel, the form data, the ways to report
// to the operator, and what the pages do with configuration files.
//
// Files, each before getCGIPath(): the staging file is "/var/tmp/restored_eficonf" and the backup
// file "/var/tmp/efi_backup", both followed directly by the session identifier; the lock file
// that guards every session's staging file is "/var/tmp/restored_eficonf.lock". The page classes
// hold the paths and pass them in.
class AbstractBackupRestorePage : public CommonDefaultPage {
public:
    // The ending of a configuration file's name, upper and lower case as it stands.
    static const char* const FILE_EXTENSION;

    // The references and `displayMode` must outlive the page.
    AbstractBackupRestorePage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                              int* displayMode, const std::string& skeletonFileName,
                              int functionNumber);

    void makeDispPage() override = 0;
    void makeConfigPage() override = 0;

protected:
    // The display mode with which a page may be used; every other value means no authority.
    static const int ALLOWED = 2;

    // Where every form is posted to, and the name that all form fields give their form.
    static const char* const FORM_TARGET;
    static const char* const FORM_NAME;

    // Adds `text` to the message, behind "<br>" when there is one already.
    void addMessage(const std::string& text);

    // Adds `text` to the message, and has it shown as an alert over the page.
    void addNotice(const std::string& text);

    // Adds `text` to the message, marks the page as an error and drops every component, so that
    // only the message is shown.
    void reportError(const std::string& text);

    // Adds the notice for a back-end error: the code's own message, or `defaultMessageId`.
    void setErrMsg(int defaultMessageId, int errorCode);

    // Checks the uploaded file and moves it to `stagingPath`, holding the lock. A refusal or
    // failure becomes a notice; an earlier staged file then stays as it was.
    void upload(std::string& stagingPath, std::string& lockPath);

    // Has the back-end restore the staged file to the partitions of `request`. A notice tells the
    // outcome, success too. The other arguments are not used.
    void restoreUploadedFile(VeskUi::PrimitiveTypeArray<unsigned char>& request, bool& finished,
                             int function);

    // Removes the staged file, holding the lock. A failure is traced and not shown. Throws
    // PException when the lock cannot be had; the file then stands as before.
    void discardUploadedFile(std::string& stagingPath, std::string& lockPath);

    // Has the back-end write the configuration of `partition` into `backupPath` and puts the
    // download's link and the call that starts it into the page. The download's name carries the
    // partition number when `named` is set. A refusal becomes a notice, without a link. Throws
    // PException when the written file has no readable header.
    void backup(unsigned int partition, std::string& backupPath, bool named);

    // Writes text `number` of the message library to the trace, with `detail` as its text and,
    // in the second form, `systemError` (an errno) as its number.
    void traceText(int number, const char* detail);
    void traceSystemError(const char* detail, int systemError);

    // Traces that `subject` cannot be had from the back-end, and reports it in the same words.
    void reportUnreadable(const char* subject);

    // Puts a component into the page. A text is escaped when printed, unless it is ready to
    // print.
    void putText(const std::string& name, const std::string& text);
    void putReadyText(const std::string& name, const std::string& text);
    void putHiddenField(const std::string& name, const std::string& field,
                        const std::string& value);

    // The file chooser "filename" and the button "install" that uploads what was chosen.
    void putFileSelector();
    void putUploadButton();

    // Puts a component into a table row.
    static void addToRow(HTMLItem& row, const std::string& name,
                         std::unique_ptr<HTMLComponent> component);

    // `saveTime` (seconds since 1970-01-01 UTC) as a date of the board's local calendar, such as
    // 2009-03-07; with an empty `separator` as 20090307.
    static std::string formatDate(unsigned int saveTime, const std::string& separator);

    // Ends the page's construction: builds the page, lets go of the form data, and drops every
    // component when the page holds an error. Called once, last in a page's constructor.
    void buildPage();

    CGIRequester& requester;
    FormInfo& formInfo;
    int functionNumber;

private:
    bool checkUpload();
    void moveUpload(const std::string& stagingPath);
};

}  // namespace VeskLib::Gui
