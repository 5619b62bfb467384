#pragma once

#include <exception>
#include <string>
#include <vector>

namespace VeskLib::Scripted {

// What the program asked of the platform: one readable line per call, in order, and the platform
// objects that are alive. A line begins with the operation's name; the making and the deletion of
// an object are lines too, such as "new HiddenField(name, value, form)".

void record(const std::string& call);

// All lines since forgetRecords().
const std::vector<std::string>& recordedCalls();

// The lines that begin with one of `beginnings`.
std::vector<std::string> recordedCalls(const std::vector<std::string>& beginnings);

// Drops the lines; the objects stay known.
void forgetCalls();

// From now on the call whose line begins with `beginning` throws `exception`, which may be of any
// type; the line is recorded before. Null takes that back. Not for deletions.
void throwAt(const std::string& beginning, const std::exception_ptr& exception);

// Drops everything.
void forgetRecords();

// To be called by the constructor and the destructor of every platform class. `description` is
// the class with its constructor arguments.
void objectMade(const void* object, const std::string& description);
void objectDeleted(const void* object);

// The descriptions of the objects that were made and not deleted.
std::vector<std::string> livingObjects();

// How often a destructor ran for an object that was not alive.
unsigned int wrongDeletions();

// The written forms that the lines use.
std::string toText(const std::string& value);
std::string toText(const char* value);
std::string toText(bool value);
std::string toText(int value);
std::string toText(unsigned int value);
std::string toHexadecimal(unsigned int number);                      // 0x0201002F
std::string toHexadecimal(const std::vector<unsigned char>& bytes);  // 00 02 41 42

// "name(first, second)"
template <typename First, typename... Others>
std::string describe(const std::string& name, const First& first, const Others&... others) {
    return name + "(" + (toText(first) + ... + (", " + toText(others))) + ")";
}

}  // namespace VeskLib::Scripted
