#pragma once

// The screen's function numbers, as requests name them in "functionID".
namespace VeskLib::Gui::Functions {

inline constexpr int BACKUP = 105;  // also the combined page's
inline constexpr int RESTORE = 106;

}  // namespace VeskLib::Gui::Functions
