#pragma once

#include <exception>
#include <string>
#include <vector>

namespace VeskLib::Scripted {

// Records the program's calls to the platform, in order, as one readable line each, and keeps track
// of the platform objects that are alive. A line starts with the operation's name. Construction and
// deletion of an object are lines too, for instance "new HiddenField(name, value, form)".

void record(const std::string& call);

// Returns all lines since the last forgetCalls() or forgetRecords().
const std::vector<std::string>& recordedCalls();

// Returns the lines that start with one of `beginnings`.
std::vector<std::string> recordedCalls(const std::vector<std::string>& beginnings);

// Discards the lines, but keeps track of the objects.
void forgetCalls();

// Makes every call with a line that starts with `beginning` throw `exception`, of any type, after
// recording the line. Null ends this. Must not be used for deletions.
void throwAt(const std::string& beginning, const std::exception_ptr& exception);

// Discards lines, objects and exceptions.
void forgetRecords();

// Called by the constructor and the destructor of every platform class. `description` is the class
// name with the constructor's arguments.
void objectMade(const void* object, const std::string& description);
void objectDeleted(const void* object);

// Returns the descriptions of the objects that are alive.
std::vector<std::string> livingObjects();

// Returns how often a destructor ran for an object that was not alive.
unsigned int wrongDeletions();

// Return the text that represents `value` in a line.
std::string toText(const std::string& value);
std::string toText(const char* value);
std::string toText(bool value);
std::string toText(int value);
std::string toText(unsigned int value);
std::string toHexadecimal(unsigned int number);                      // 0x0201002F
std::string toHexadecimal(const std::vector<unsigned char>& bytes);  // 00 02 41 42

// Returns "name(first, second)".
template <typename First, typename... Others>
std::string describe(const std::string& name, const First& first, const Others&... others) {
    return name + "(" + (toText(first) + ... + (", " + toText(others))) + ")";
}

}  // namespace VeskLib::Scripted
