#pragma once

#include "data/PrimitiveTypeArray.h"
#include "html/HTMLItem.h"

#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/CommonDefaultPage.h>
#include <VeskLib/Gui/FormInfo.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The base class of the screen's pages. It has the request channel, the form data, the ways to
// report to the operator, and the operations on configuration files.
//
// The page classes build the paths of the staged file, its lock and the backup file from
// boardPaths.h and pass them in.
//
// A posted action is carried out before the user's authority is checked, because the check is made
// when the form is built, which comes last. This is safe because the request channel sends no
// change once JudgeAuthority has refused the user.
class AbstractBackupRestorePage : public CommonDefaultPage {
public:
    // The extension of a configuration file, case-sensitive.
    static constexpr const char* FILE_EXTENSION = ".dat";

    // `requester`, `formInfo`, `messageMgr` and `displayMode` must outlive the page.
    AbstractBackupRestorePage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                              int* displayMode, const std::string& skeletonFileName,
                              int functionNumber);

    void makeDispPage() override = 0;
    void makeConfigPage() override = 0;

protected:
    // The display mode of a user who may use the page. Any other value means no authority.
    static const int ALLOWED = 2;

    // The address that every form is posted to, and the name of the form.
    static constexpr const char* FORM_TARGET = "/maintenance/efi_backup_restore.cgi";
    static constexpr const char* FORM_NAME = "form_name";

    // The header of a configuration file.
    struct ConfigurationFacts {
        unsigned int saveTime = 0;  // seconds since 1970-01-01 UTC
        std::string version;
        unsigned int partition = 0;
        std::string partitionName;
    };

    // Reads the header of the configuration file `path`. Throws PException if the file cannot be
    // read or is not a configuration file.
    static ConfigurationFacts readConfigurationFacts(const std::string& path);

    // Returns true if the user may use the screen. Otherwise traces `refusal`, reports that the
    // user has no permission, and returns false.
    bool checkAuthority(const std::string& refusal);

    // Appends `text` to the message, after "<br>" unless the message is empty.
    void addMessage(const std::string& text);

    // Appends `text` to the message, which is then shown as an alert over the page.
    void addNotice(const std::string& text);

    // Appends `text` to the message, marks the page as an error and deletes all components, so that
    // only the message is shown.
    void reportError(const std::string& text);

    // Adds a notice for a back-end error. The message is the one for `errorCode`, or
    // `defaultMessageId` if that code has no message of its own.
    void setErrMsg(int defaultMessageId, int errorCode);

    // Checks the uploaded file and renames it to `stagingPath` while holding the lock. If it is
    // refused or anything fails, adds a notice and leaves a previously staged file unchanged. Does
    // not throw PException.
    void upload(std::string& stagingPath, std::string& lockPath);

    // Asks the back-end to restore the staged file to the partitions in `request`, and adds a
    // notice of the outcome, success included. The other arguments are unused.
    void restoreUploadedFile(VeskUi::PrimitiveTypeArray<unsigned char>& request, bool& finished,
                             int function);

    // Removes the staged file while holding the lock. If that fails, only writes a trace line.
    // Throws PException, and leaves the file unchanged, if the lock cannot be acquired.
    void discardUploadedFile(std::string& stagingPath, std::string& lockPath);

    // Asks the back-end to write the configuration of `partition` to `backupPath`, and adds to the
    // page the download link and the script call that starts the download. The suggested file name
    // contains the partition number if `named` is set. If the back-end refuses, adds a notice and
    // no link. Throws PException if the header of the written file cannot be read.
    void backup(unsigned int partition, std::string& backupPath, bool named);

    // Write text `number` of the message library, or the text for a failed system call, to the
    // trace. The arguments of the text are `detail` and, in the second form, the errno.
    void traceText(int number, const std::string& detail);
    void traceSystemError(const std::string& detail, int systemError);

    // Reports and traces that `subject` is unavailable from the back-end.
    void reportUnavailable(const std::string& subject);

    // Add a component to the page. putText() escapes the text when printing it; putReadyText()
    // does not.
    void putText(const std::string& name, const std::string& text);
    void putReadyText(const std::string& name, const std::string& text);
    void putHiddenField(const std::string& name, const std::string& field,
                        const std::string& value);

    // Add the file input "filename", and the button "install", which uploads the chosen file.
    void putFileSelector();
    void putUploadButton();

    // Adds `component` to a table row, which takes ownership.
    static void addToRow(HTMLItem& row, const std::string& name,
                         std::unique_ptr<HTMLComponent> component);

    // Returns the date of `saveTime` (seconds since 1970-01-01 UTC) in the board's local time, such
    // as 2009-03-07, or 20090307 if `separator` is empty.
    static std::string formatDate(unsigned int saveTime, const std::string& separator);

    // Builds the page, releases the form data, and deletes all components if the page is an error.
    // Called once, at the end of a page's constructor.
    void buildPage();

    CGIRequester& requester;
    FormInfo& formInfo;
    int functionNumber;

private:
    // Returns true if the upload may be stored; otherwise adds a notice and returns false.
    bool checkUpload();

    void storeUpload(const std::string& stagingPath, const std::string& lockPath);
    void moveUpload(const std::string& stagingPath);
};

}  // namespace VeskLib::Gui
