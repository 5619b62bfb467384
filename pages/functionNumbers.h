#pragma once

// The values of the request's field "functionID".
namespace VeskLib::Gui::Functions {

inline constexpr int BACKUP = 105;  // also of the combined page
inline constexpr int RESTORE = 106;

}  // namespace VeskLib::Gui::Functions
