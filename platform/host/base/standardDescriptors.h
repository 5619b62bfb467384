#pragma once

namespace VeskLib::Host {

// Sees to it that standard input, output and errors are taken when a program is started without
// them, so that no file or connection that it opens gets their numbers and is taken for them. What
// they are then given fails to read and to write. Ends the process when that cannot be done. To be
// called before anything is opened.
void occupyStandardDescriptors();

}  // namespace VeskLib::Host
