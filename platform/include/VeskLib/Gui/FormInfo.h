#pragma once

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The request's query string, form fields and uploaded file. The first get function that is called
// reads the request, and throws PException if it is malformed or too large.
class FormInfo {
public:
    // The process-wide object. Null until the program creates it; the program never deletes it.
    static FormInfo* myInstance;

    FormInfo();
    FormInfo(const FormInfo&) = delete;
    FormInfo& operator=(const FormInfo&) = delete;
    ~FormInfo();

    // Sets `value` to the field's value, which may be empty, and returns true if the request has
    // the field `name`. Otherwise returns false and leaves `value` unchanged. A form field takes
    // precedence over a query field of the same name.
    bool getFormData(const std::string& name, std::string& value) const;

    // Return the uploaded file's name as the browser sent it, the path of the temporary file, and
    // the number of bytes received; without an uploaded file, empty strings and 0. A file larger
    // than the platform's limit is counted but not stored, and has no path. getUploadFilePath()
    // throws PException if the file could not be written to disk.
    //
    // The temporary file is on the same file system as the board's /var/tmp. To keep the file,
    // rename it.
    std::string getUploadFileName() const;
    std::string getUploadFilePath() const;
    unsigned int getUploadFileSize() const;

    // Releases everything that was read. Afterwards getFormData() finds no field. Removes the
    // uploaded file unless it was renamed.
    void terminate();

private:
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace VeskLib::Gui
