#pragma once

namespace VeskLib::Host {

// Opens standard input, output and error if the program was started without them. Otherwise a file
// or connection that it opens later would get one of their numbers and be mistaken for it. Reading
// from and writing to the descriptors opened here fails. Exits the process if they cannot be
// opened. Must be called before the program opens anything.
void occupyStandardDescriptors();

}  // namespace VeskLib::Host
