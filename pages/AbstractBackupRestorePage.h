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
// The page classes build the paths of the staging file, its lock and the backup file from
// boardPaths.h and pass them in.
//
// A posted action is carried out before the user's authority is examined, because the screen's
// form, which examines it, is built last. The board is protected elsewhere: once JudgeAuthority has
// refused the user, the request channel sends no change.
class AbstractBackupRestorePage : public CommonDefaultPage {
public:
    // The end of a configuration file's name, case-sensitive.
    static constexpr const char* FILE_EXTENSION = ".dat";

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
    static constexpr const char* FORM_TARGET = "/maintenance/efi_backup_restore.cgi";
    static constexpr const char* FORM_NAME = "form_name";

    // What a configuration file says of itself.
    struct ConfigurationFacts {
        unsigned int saveTime = 0;  // seconds since 1970-01-01 UTC
        std::string version;
        unsigned int partition = 0;
        std::string partitionName;
    };

    // Reads the facts of the configuration file `path`. Throws PException when the file cannot be
    // read or is not a configuration file.
    static ConfigurationFacts readConfigurationFacts(const std::string& path);

    // Returns true if the user may use the screen. Otherwise traces `refusal` and reports that the
    // user has no permission.
    bool checkAuthority(const std::string& refusal);

    // Appends `text` to the message, after "<br>" when the message is not empty.
    void addMessage(const std::string& text);

    // Adds `text` to the message, and has it shown as an alert over the page.
    void addNotice(const std::string& text);

    // Adds `text` to the message, marks the page as an error and drops every component, so that
    // only the message is shown.
    void reportError(const std::string& text);

    // Adds the notice for a back-end error: the code's own message, or `defaultMessageId`.
    void setErrMsg(int defaultMessageId, int errorCode);

    // Checks the uploaded file and moves it to `stagingPath`, holding the lock. A refusal or
    // failure becomes a notice and leaves an earlier staged file unchanged. A PException of the
    // platform at any step is such a failure; none is thrown.
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
    void traceText(int number, const std::string& detail);
    void traceSystemError(const std::string& detail, int systemError);

    // Traces that the back-end does not return `subject`, and reports it in the same words.
    void reportUnavailable(const std::string& subject);

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
    // Returns true if the upload may be stored; otherwise adds a notice.
    bool checkUpload();

    void storeUpload(const std::string& stagingPath, const std::string& lockPath);
    void moveUpload(const std::string& stagingPath);
};

}  // namespace VeskLib::Gui
