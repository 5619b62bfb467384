#pragma once

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The request's query string, form fields and uploaded file. The request is read when it is first
// asked about. A malformed or oversized request throws PException from that first question.
class FormInfo {
public:
    // The process-wide object; null until the program makes it. Never deleted by the program.
    static FormInfo* myInstance;

    FormInfo();
    FormInfo(const FormInfo&) = delete;
    FormInfo& operator=(const FormInfo&) = delete;
    ~FormInfo();

    // True, with `value` filled, when the request holds the field `name` (its value may be
    // empty); false, with `value` unchanged, when not. A form field wins over a query field.
    bool getFormData(const std::string& name, std::string& value) const;

    // The one uploaded file: its name as the browser sent it, the path of the temporary file that
    // holds it, and how many bytes were received. Bytes beyond the platform's limit for a file are
    // counted and not stored; such a file has no path. Without an uploaded file both texts are
    // empty and the size is 0. getUploadFilePath() throws PException when the disk did not take the
    // file.
    //
    // The temporary file lies on one file system with the board's /var/tmp. Who wants to keep it
    // renames it.
    std::string getUploadFileName() const;
    std::string getUploadFilePath() const;
    unsigned int getUploadFileSize() const;

    // Ends the work on the request: everything read so far is let go of, and getFormData() finds
    // no field any more. An uploaded file that was not moved is removed.
    void terminate();

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace VeskLib::Gui
